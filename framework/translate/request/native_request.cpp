#include "yfw/native_request.hpp"

namespace yfw {
namespace {

// The node for a step: the entry with the known keys, or one for all entries that selects their keys, which identify
// them.
data_node &descend(data_tree &tree, data_node *parent, const path_step &step) {
  if (!is_list(step.node)) {
    return tree.at(parent, step.node);
  }
  const std::vector<key_value> known = step_keys(step);
  data_node &entry = tree.entry(parent, ns(step.node), name(step.node), known);
  if (known.empty()) {
    for (const std::string_view key : keys(step.node)) {
      (void)tree.at(&entry, ns(step.node), key);
    }
  }
  return entry;
}

void add_call(data_tree &tree, const native_operation &call, uint32_t default_operation) {
  data_node *node = nullptr;
  for (const path_step &step : call.steps) {
    node = &descend(tree, node, step);
  }
  if (node == nullptr) {
    return;
  }
  if (call.kind == operation_kind::read) {
    if (call.value) {
      tree.set_value(*node, *call.value);
    }
    return;
  }
  node->value.reset();
  if (call.value) {
    tree.set_value(*node, *call.value);
  }
  const bool is_default = call.operation == YFW_OPERATION_MERGE && default_operation == YFW_OPERATION_MERGE;
  node->operation = is_default ? std::nullopt : std::optional(call.operation);
}

}  // namespace

data_tree native_tree(const native_request &request, const schema &modules) {
  data_tree tree(modules);
  for (const native_operation &call : request.calls) {
    add_call(tree, call, request.client.default_operation);
  }
  return tree;
}

}  // namespace yfw
