#include "yfw/internal/coverage_document.hpp"

#include <algorithm>
#include <deque>
#include <sstream>

#include "yfw/data_tree.hpp"
#include "yfw/internal/coverage_values.hpp"
#include "yfw/node.hpp"
#include "yfw/writer.hpp"

namespace yfw {
namespace {

// The nodes from the top down to `node`.
std::vector<const lysc_node *> steps_to(const lysc_node *node) {
  std::vector<const lysc_node *> steps;
  for (; node != nullptr; node = parent(node)) {
    steps.insert(steps.begin(), node);
  }
  return steps;
}

data_node &add_entry(data_tree &tree, data_node *above, const lysc_node *list) {
  std::deque<std::string> values;
  std::vector<key_value> given;
  for (const std::string_view key : keys(list)) {
    const auto samples = sample_values(tree.modules(), tree.modules().child(list, ns(list), key));
    if (samples.empty()) {
      throw error(place{"", 0, path(list)}, "no sample value of key " + in_quotes(key) + " is known");
    }
    given.emplace_back(key, values.emplace_back(samples.front()));
  }
  return given.empty() ? tree.add(above, list) : tree.entry(above, ns(list), name(list), given);
}

std::string text_of(const schema &modules, const lysc_node *leaf, bool without_leaf) {
  data_tree tree(modules);
  data_node *at = nullptr;
  for (const lysc_node *step : steps_to(leaf)) {
    if (step != leaf || !without_leaf) {
      at = is_list(step) ? &add_entry(tree, at, step) : &tree.at(at, step);
    }
  }
  std::ostringstream text;
  write_xml(text, tree, {.wrappers = {{"data", netconf_ns}}});
  return text.str();
}

yfw_node_t *find(std::span<yfw_node_t> nodes, const lysc_node *schema) {
  for (yfw_node_t &node : nodes) {
    yfw_node_t *found = extra(node).schema == schema ? &node : find(children(node), schema);
    if (found != nullptr) {
      return found;
    }
  }
  return nullptr;
}

}  // namespace

one_leaf_document::one_leaf_document(const schema &modules, const lysc_node *leaf, bool without_leaf)
    : document_(document::read(text_of(modules, leaf, without_leaf), path(leaf), modules)),
      leaf_(find(document_.roots(), leaf)) {}

void one_leaf_document::set_value(const std::optional<std::string> &value) {
  value_ = value.value_or("");
  leaf_->value = value ? value_.c_str() : nullptr;
}

void one_leaf_document::set_operation(uint8_t operation) {
  extra(*leaf_).given_operation = operation;
}

}  // namespace yfw
