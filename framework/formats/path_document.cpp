#include "yfw/path_document.hpp"

#include <sstream>

#include "yfw/data_tree.hpp"
#include "yfw/writer.hpp"

namespace yfw {

data_node &add_step(data_tree &tree, data_node *parent, const path_step &step) {
  return is_list(step.node) ? tree.entry(parent, ns(step.node), name(step.node), step_keys(step))
                            : tree.at(parent, step.node);
}

data_node *add_path(data_tree &tree, const std::vector<path_step> &steps) {
  data_node *node = nullptr;
  for (const path_step &step : steps) {
    node = &add_step(tree, node, step);
  }
  return node;
}

namespace {

data_tree tree_of(const std::vector<path_step> &steps, const schema &modules, uint32_t operation,
                  const std::optional<std::string> &value) {
  data_tree tree(modules);
  if (data_node *last = add_path(tree, steps); last != nullptr) {
    last->operation = operation == no_operation ? std::nullopt : std::optional(operation);
    if (value) {
      tree.set_value(*last, *value);
    }
  }
  return tree;
}

}  // namespace

std::string text_for(const std::vector<path_step> &steps, const schema &modules, uint32_t operation,
                     const std::optional<std::string> &value) {
  std::ostringstream text;
  write_json(text, tree_of(steps, modules, operation, value));
  return text.str();
}

document request_for(const std::vector<path_step> &steps, const schema &modules, uint32_t operation,
                     const std::optional<std::string> &value) {
  return document::from_tree(tree_of(steps, modules, operation, value), "");
}

}  // namespace yfw
