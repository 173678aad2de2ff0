#include "yfw/client_request.hpp"

#include <algorithm>
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
    if (is(*message, "get") || is(*message, "get-config")) {
      return read_get(*message);
    }
    if (is(*message, "edit-config")) {
      return read_edit(*message);
    }
    refuse(*message, quoted(message->tag) + " is not supported, only 'get', 'get-config' and 'edit-config'");
  }

 private:
  static bool is(const yfw_node_t &node, std::string_view tag) {
    return node.ns != nullptr && node.tag == tag && std::string_view(node.ns) == netconf_ns;
  }

  [[noreturn]] void refuse(const yfw_node_t &node, const std::string &text,
                           error_tag tag = error_tag::operation_not_supported, const std::string &element = {}) const {
    throw rpc_error(document_.where(node), text, tag, element);
  }

  client_request read_get(yfw_node_t &message) {
    client_request result;
    result.operation = is(message, "get") ? client_operation::get : client_operation::get_config;
    result.everything = true;
    for (yfw_node_t &parameter : children(message)) {
      if (is(parameter, "filter")) {
        require_subtree(parameter);
        result.everything = false;
        take_data(parameter, result);
      } else if (!is(parameter, "source") || result.operation == client_operation::get) {
        refuse(parameter, quoted(parameter.tag) + " is not a supported parameter of '" + message.tag + "'",
               error_tag::unknown_element, parameter.tag);
      }
    }
    return result;
  }

  void require_subtree(const yfw_node_t &filter) const {
    for (const std::string_view ns : {std::string_view(), std::string_view(netconf_ns)}) {
      if (const auto type = document_.attribute(filter, ns, "type"); type && *type != "subtree") {
        refuse(filter, "filter type " + quoted(*type) + " is not supported, only 'subtree'");
      }
    }
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
        result.target = target(parameter);
      } else if (is(parameter, "default-operation")) {
        result.default_operation = default_operation(parameter);
      } else if (is(parameter, "test-option")) {
        result.test_option = one_of(parameter, {"test-then-set", "set", "test-only"});
      } else if (is(parameter, "error-option")) {
        result.error_option = one_of(parameter, {"stop-on-error", "continue-on-error", "rollback-on-error"});
      } else {
        refuse(parameter, quoted(parameter.tag) + " is not a supported parameter of 'edit-config'",
               error_tag::unknown_element, parameter.tag);
      }
    }
    if (!has_config) {
      refuse(message, "an edit-config needs a 'config'", error_tag::missing_element, "config");
    }
    return result;
  }

  std::string target(const yfw_node_t &parameter) const {
    if (children(parameter).size() != 1) {
      refuse(parameter, "a target names one datastore", error_tag::invalid_value);
    }
    return children(parameter).front().tag;
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
      refuse(parameter, quoted(value) + " is not one of its values, which are " + known, error_tag::invalid_value);
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

// An envelope that holds nothing but data: its operation is said elsewhere.
bool is_data_holder(const yfw_node_t &node) {
  const std::string_view tag = node.tag;
  return is_envelope(node) && (tag == "data" || tag == "config" || tag == "filter");
}

}  // namespace

bool is_bare(const document &request) {
  const auto roots = request.roots();
  return roots.empty() || !is_envelope(roots.front()) || is_data_holder(roots.front());
}

client_request read_client_request(document &request, std::optional<client_operation> bare_operation) {
  if (!is_bare(request)) {
    return message_reader(request).read(request.roots().front());
  }
  client_request result;
  result.operation = bare_operation.value_or(client_operation::get);
  for (yfw_node_t &root : request.roots()) {
    if (is_data_holder(root)) {
      for (yfw_node_t &node : children(root)) {
        result.data.push_back(&node);
      }
    } else {
      result.data.push_back(&root);
    }
  }
  return result;
}

}  // namespace yfw
