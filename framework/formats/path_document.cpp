#include "yfw/path_document.hpp"

#include <sstream>

#include "yfw/data_tree.hpp"
#include "yfw/writer.hpp"

namespace yfw {
namespace {

// The last one of the steps' nodes, all of which are in the tree then; null for none.
data_node *add_path(data_tree &tree, const std::vector<path_step> &steps) {
  data_node *node = nullptr;
  for (const path_step &step : steps) {
    const std::vector<key_value> keys(step.keys.begin(), step.keys.end());
    node = is_list(step.node) ? &tree.entry(node, ns(step.node), name(step.node), keys) : &tree.at(node, step.node);
  }
  return node;
}

}  // namespace

std::string text_for(const std::vector<path_step> &steps, const schema &modules, uint32_t operation,
                     const std::optional<std::string> &value) {
  data_tree tree(modules);
  if (data_node *last = add_path(tree, steps); last != nullptr) {
    last->operation = operation == no_operation ? std::nullopt : std::optional(operation);
    if (value) {
      tree.set_value(*last, *value);
    }
  }
  std::ostringstream text;
  write_json(text, tree);
  return text.str();
}

document request_for(const std::vector<path_step> &steps, const schema &modules, uint32_t operation,
                     const std::optional<std::string> &value) {
  return document::read(text_for(steps, modules, operation, value), "", modules);
}

}  // namespace yfw
