#include "yfw/client_request.hpp"

#include <string_view>

#include "yfw/internal/text.hpp"

namespace yfw {
namespace {

// An envelope that holds only data, without an operation.
bool is_data_holder(const yfw_node_t &node) {
  const std::string_view tag = node.tag;
  return is_envelope(node) && (tag == "data" || tag == "config" || tag == "filter");
}

// Whitespace around the value of a content match node is ignored; a leaf with nothing else is a selection node (RFC
// 6241, sections 6.2.4 and 6.2.5).
void trim_values(yfw_node_t &node) {
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

}  // namespace

void require_subtree(const document &request, const yfw_node_t &filter) {
  for (const std::string_view ns : {std::string_view(), std::string_view(netconf_ns)}) {
    if (const auto type = request.attribute(filter, ns, "type"); type && *type != "subtree") {
      throw client_error(request.where(filter), "unsupported filter type " + in_quotes(*type) + ", expected 'subtree'",
                         error_tag::operation_not_supported);
    }
  }
}

// Operations are allowed on data only: on a message they would be lost.
void require_no_operations(const document &request, const yfw_node_t &node) {
  if (!is_envelope(node)) {
    return;
  }
  if (const uint8_t operation = extra(node).given_operation; operation != no_operation) {
    throw client_error(request.where(node),
                       "operation " + in_quotes(operation_word(operation)) + " is not allowed on " +
                           in_quotes(node.tag) + "; put it on the data",
                       error_tag::bad_element);
  }
  for (const yfw_node_t &below : children(node)) {
    require_no_operations(request, below);
  }
}

bool is_bare(const document &request) {
  const auto roots = request.roots();
  return roots.empty() || !is_envelope(roots.front()) || is_data_holder(roots.front());
}

void trim_filter(const document &request, client_request &read) {
  if (read.is_read() && request.format() == data_format::xml) {
    for (yfw_node_t *node : read.data) {
      trim_values(*node);
    }
  }
}

client_request bare_request(document &request, client_operation operation) {
  client_request result;
  result.operation = operation;
  for (yfw_node_t &root : request.roots()) {
    require_no_operations(request, root);
    if (is_data_holder(root)) {
      require_subtree(request, root);
      for (yfw_node_t &node : children(root)) {
        result.data.push_back(&node);
      }
    } else {
      result.data.push_back(&root);
    }
  }
  trim_filter(request, result);
  return result;
}

}  // namespace yfw
