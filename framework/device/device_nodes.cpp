#include "device_nodes.hpp"

#include <algorithm>

namespace yfw {

const std::string *key_text(const native_node &entry, std::string_view name) {
  const auto found = std::ranges::find_if(
      entry.children, [&](const native_node &each) { return is_key(each.schema) && each.tag == name; });
  return found != entry.children.end() && found->value ? &*found->value : nullptr;
}

bool leads_to(const path_step &step, const native_node &node) {
  return node.schema == step.node && std::ranges::all_of(step.keys, [&](const auto &key) {
           const std::string *text = key_text(node, key.first);
           return text != nullptr && *text == key.second;
         });
}

std::string predicates(const native_node &node) {
  std::string text;
  for (const std::string_view key : keys(node.schema)) {
    const std::string *value = key_text(node, key);
    text.append("[").append(key).append("=").append(key_literal(value != nullptr ? *value : "")).append("]");
  }
  if (is_leaf_list(node.schema)) {
    text.append("[.=").append(key_literal(node.value.value_or(""))).append("]");
  }
  return text;
}

}  // namespace yfw
