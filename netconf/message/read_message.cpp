#include "yfw/message.hpp"

#include <algorithm>
#include <set>
#include <string_view>

namespace yfw {
namespace {

// Reads one message and checks its parameters.
class message_reader {
 public:
  explicit message_reader(document &request) : document_(request) {}

  client_request read(yfw_node_t &root) {
    yfw_node_t *message = &root;
    if (is(root, "rpc")) {
      if (children(root).size() != 1) {
        fail(root, "an rpc must hold one operation, expected 'get', 'get-config', 'edit-config'");
      }
      message = &children(root).front();
    }
    require_no_repetition(*message);
    if (is(*message, "get") || is(*message, "get-config")) {
      return read_get(*message);
    }
    if (is(*message, "edit-config")) {
      return read_edit(*message);
    }
    fail(*message,
         "unsupported operation " + in_quotes(message->tag) + ", expected 'get', 'get-config', 'edit-config'");
  }

 private:
  static bool is(const yfw_node_t &node, std::string_view tag) {
    return node.ns != nullptr && node.tag == tag && std::string_view(node.ns) == netconf_ns;
  }

  [[noreturn]] void fail(const yfw_node_t &node, const std::string &text,
                         error_tag tag = error_tag::operation_not_supported, const std::string &element = {}) const {
    throw client_error(document_.where(node), text, tag, element);
  }

  void require_no_repetition(const yfw_node_t &message) const {
    std::set<std::string_view> seen;
    for (const yfw_node_t &parameter : children(message)) {
      if (!seen.insert(parameter.tag).second) {
        fail(parameter, in_quotes(parameter.tag) + " appears twice", error_tag::bad_element);
      }
    }
  }

  client_request read_get(yfw_node_t &message) {
    client_request result;
    result.operation = is(message, "get") ? client_operation::get : client_operation::get_config;
    result.everything = true;
    for (yfw_node_t &parameter : children(message)) {
      if (is(parameter, "filter")) {
        require_subtree(document_, parameter);
        result.everything = false;
        add_data(parameter, result);
      } else if (is(parameter, "source") && result.operation == client_operation::get_config) {
        result.source = datastore(parameter);
      } else {
        fail(parameter, "unsupported parameter " + in_quotes(parameter.tag) + " of '" + message.tag + "'",
             error_tag::unknown_element, parameter.tag);
      }
    }
    return result;
  }

  client_request read_edit(yfw_node_t &message) {
    client_request result;
    result.operation = client_operation::edit;
    bool has_config = false;
    for (yfw_node_t &parameter : children(message)) {
      if (is(parameter, "config")) {
        has_config = true;
        add_data(parameter, result);
      } else if (is(parameter, "target")) {
        result.target = datastore(parameter);
      } else if (is(parameter, "default-operation")) {
        result.default_operation = default_operation(parameter);
      } else if (is(parameter, "test-option")) {
        result.test_option = one_of(parameter, {"test-then-set", "set", "test-only"});
      } else if (is(parameter, "error-option")) {
        result.error_option = one_of(parameter, {"stop-on-error", "continue-on-error", "rollback-on-error"});
      } else {
        fail(parameter, "unsupported parameter " + in_quotes(parameter.tag) + " of 'edit-config'",
             error_tag::unknown_element, parameter.tag);
      }
    }
    if (!has_config) {
      fail(message, "'config' is missing", error_tag::missing_element, "config");
    }
    if (result.data.empty() && result.default_operation == YFW_OPERATION_REPLACE) {
      fail(message, "replacing the whole configuration is not supported");
    }
    return result;
  }

  std::string datastore(const yfw_node_t &parameter) const {
    if (children(parameter).size() != 1) {
      fail(parameter, in_quotes(parameter.tag) + " must name one datastore", error_tag::invalid_value);
    }
    const yfw_node_t &named = children(parameter).front();
    if (!is(named, "running") && !is(named, "candidate") && !is(named, "startup")) {
      fail(named, "unsupported datastore " + in_quotes(named.tag) + ", expected 'running', 'candidate', 'startup'",
           error_tag::operation_not_supported);
    }
    return named.tag;
  }

  uint32_t default_operation(const yfw_node_t &parameter) const {
    const std::string word = one_of(parameter, {"merge", "replace", "none"});
    return word == "none" ? no_operation : operation_number(word);
  }

  std::string one_of(const yfw_node_t &parameter, std::initializer_list<std::string_view> words) const {
    const std::string_view value = parameter.value != nullptr ? parameter.value : "";
    if (std::find(words.begin(), words.end(), value) == words.end()) {
      throw client_error(document_.where(parameter),
                         {rejected_value::kind::invalid, std::string(value), ", expected " + quoted_list(words),
                          std::vector<std::string>(words.begin(), words.end())});
    }
    return std::string(value);
  }

  static void add_data(yfw_node_t &holder, client_request &result) {
    for (yfw_node_t &node : children(holder)) {
      result.data.push_back(&node);
    }
  }

  document &document_;
};

}  // namespace

client_request read_client_request(document &request, std::optional<client_operation> bare_operation) {
  if (is_bare(request)) {
    return bare_request(request, bare_operation.value_or(client_operation::get));
  }
  for (const yfw_node_t &root : request.roots()) {
    require_no_operations(request, root);
  }
  client_request result = message_reader(request).read(request.roots().front());
  trim_filter(request, result);
  return result;
}

}  // namespace yfw
