#include "yfw/message.hpp"

#include <algorithm>
#include <set>
#include <string_view>

namespace yfw {
namespace {

// The words of one message, checked against what its place allows.
class message_reader {
 public:
  explicit message_reader(document &request) : document_(request) {}

  client_request read(yfw_node_t &root) {
    yfw_node_t *message = &root;
    if (is(root, "rpc")) {
      if (children(root).size() != 1) {
        refuse(root, "an rpc holds one operation: 'get', 'get-config' or 'edit-config'");
      }
      message = &children(root).front();
    }
    refuse_repeated(*message);
    if (is(*message, "get") || is(*message, "get-config")) {
      return read_get(*message);
    }
    if (is(*message, "edit-config")) {
      return read_edit(*message);
    }
    refuse(*message, in_quotes(message->tag) + " is not supported, only 'get', 'get-config' and 'edit-config'");
  }

 private:
  static bool is(const yfw_node_t &node, std::string_view tag) {
    return node.ns != nullptr && node.tag == tag && std::string_view(node.ns) == netconf_ns;
  }

  [[noreturn]] void refuse(const yfw_node_t &node, const std::string &text,
                           error_tag tag = error_tag::operation_not_supported, const std::string &element = {}) const {
    throw client_error(document_.where(node), text, tag, element);
  }

  void refuse_repeated(const yfw_node_t &message) const {
    std::set<std::string_view> seen;
    for (const yfw_node_t &parameter : children(message)) {
      if (!seen.insert(parameter.tag).second) {
        refuse(parameter, in_quotes(parameter.tag) + " appears twice", error_tag::bad_element);
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
        take_data(parameter, result);
      } else if (is(parameter, "source") && result.operation == client_operation::get_config) {
        result.source = datastore(parameter);
      } else {
        refuse(parameter, in_quotes(parameter.tag) + " is not a supported parameter of '" + message.tag + "'",
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
        take_data(parameter, result);
      } else if (is(parameter, "target")) {
        result.target = datastore(parameter);
      } else if (is(parameter, "default-operation")) {
        result.default_operation = default_operation(parameter);
      } else if (is(parameter, "test-option")) {
        result.test_option = one_of(parameter, {"test-then-set", "set", "test-only"});
      } else if (is(parameter, "error-option")) {
        result.error_option = one_of(parameter, {"stop-on-error", "continue-on-error", "rollback-on-error"});
      } else {
        refuse(parameter, in_quotes(parameter.tag) + " is not a supported parameter of 'edit-config'",
               error_tag::unknown_element, parameter.tag);
      }
    }
    if (!has_config) {
      refuse(message, "an edit-config needs a 'config'", error_tag::missing_element, "config");
    }
    if (result.data.empty() && result.default_operation == YFW_OPERATION_REPLACE) {
      refuse(message, "no plug-in can replace the whole configuration");
    }
    return result;
  }

  std::string datastore(const yfw_node_t &parameter) const {
    if (children(parameter).size() != 1) {
      refuse(parameter, in_quotes(parameter.tag) + " names one datastore", error_tag::invalid_value);
    }
    const yfw_node_t &named = children(parameter).front();
    if (!is(named, "running") && !is(named, "candidate") && !is(named, "startup")) {
      refuse(named, in_quotes(named.tag) + " is not a supported datastore; 'running', 'candidate' and 'startup' are",
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
      std::string known;
      for (const std::string_view word : words) {
        known += (known.empty() ? "'" : ", '") + std::string(word) + "'";
      }
      refuse(parameter, in_quotes(value) + " is not one of its values, which are " + known, error_tag::invalid_value);
    }
    return std::string(value);
  }

  static void take_data(yfw_node_t &holder, client_request &result) {
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
    refuse_operations(request, root);
  }
  client_request result = message_reader(request).read(request.roots().front());
  trim_filter(request, result);
  return result;
}

}  // namespace yfw
