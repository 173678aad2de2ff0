#include "yfw/client_request.hpp"

#include <algorithm>
#include <set>
#include <string_view>

#include "text.hpp"

namespace yfw {
namespace {

void require_subtree(const document &request, const yfw_node_t &filter) {
  for (const std::string_view ns : {std::string_view(), std::string_view(netconf_ns)}) {
    if (const auto type = request.attribute(filter, ns, "type"); type && *type != "subtree") {
      throw rpc_error(request.where(filter), "filter type " + quoted(*type) + " is not supported, only 'subtree'",
                      error_tag::operation_not_supported);
    }
  }
}

// Operations are of data: on a message they would be lost.
void refuse_operations(const document &request, const yfw_node_t &node) {
  if (!is_envelope(node)) {
    return;
  }
  if (const uint8_t operation = extra(node).given_operation; operation != no_operation) {
    throw rpc_error(request.where(node),
                    "operation " + quoted(operation_word(operation)) + " stands on " + quoted(node.tag) +
                        ", where it means nothing; give it on the data",
                    error_tag::bad_element);
  }
  for (const yfw_node_t &below : children(node)) {
    refuse_operations(request, below);
  }
}

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

  void refuse_repeated(const yfw_node_t &message) const {
    std::set<std::string_view> seen;
    for (const yfw_node_t &parameter : children(message)) {
      if (!seen.insert(parameter.tag).second) {
        refuse(parameter, quoted(parameter.tag) + " appears twice", error_tag::bad_element);
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
        refuse(parameter, quoted(parameter.tag) + " is not a supported parameter of '" + message.tag + "'",
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
        refuse(parameter, quoted(parameter.tag) + " is not a supported parameter of 'edit-config'",
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
      refuse(parameter, quoted(parameter.tag) + " names one datastore", error_tag::invalid_value);
    }
    const yfw_node_t &named = children(parameter).front();
    if (!is(named, "running") && !is(named, "candidate") && !is(named, "startup")) {
      refuse(named, quoted(named.tag) + " is not a supported datastore; 'running', 'candidate' and 'startup' are",
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

static client_request taken_apart(document &request, std::optional<client_operation> bare_operation) {
  if (!is_bare(request)) {
    return message_reader(request).read(request.roots().front());
  }
  client_request result;
  result.operation = bare_operation.value_or(client_operation::get);
  for (yfw_node_t &root : request.roots()) {
    if (is_data_holder(root)) {
      require_subtree(request, root);
      for (yfw_node_t &node : children(root)) {
        result.data.push_back(&node);
      }
    } else {
      result.data.push_back(&root);
    }
  }
  return result;
}

// Blanks around what a filter's leaf is to be equal to do not count; a leaf with nothing else is a selection (RFC 6241,
// sections 6.2.4 and 6.2.5).
static void trim_values(yfw_node_t &node) {
  if (node.value != nullptr) {
    const std::string_view text = trimmed(node.value);
    if (const char *end = text.data() + text.size(); *end != '\0') {
      *const_cast<char *>(end) = '\0';  // the text is the document's own
    }
    node.value = text.empty() ? nullptr : text.data();
  }
  for (yfw_node_t &below : children(node)) {
    trim_values(below);
  }
}

client_request read_client_request(document &request, std::optional<client_operation> bare_operation) {
  for (const yfw_node_t &root : request.roots()) {
    refuse_operations(request, root);
  }
  client_request result = taken_apart(request, bare_operation);
  if (result.is_read() && request.format() == data_format::xml) {
    for (yfw_node_t *node : result.data) {
      trim_values(*node);
    }
  }
  return result;
}

}  // namespace yfw
