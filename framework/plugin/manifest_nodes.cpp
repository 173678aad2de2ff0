#include "yfw/internal/manifest_nodes.hpp"

#include <algorithm>

namespace yfw {
namespace {

bool is_served(const entry_point &entry, const lysc_node *node, const schema &modules) {
  if (entry.at == "/") {
    while (parent(node) != nullptr) {
      node = parent(node);
    }
    return module_name(node) == entry.module;
  }
  const lysc_node *above = served_parent(entry, modules);
  return above != nullptr && (is_within(above, node) || is_within(node, above));
}

}  // namespace

const lysc_node *served_parent(const entry_point &entry, const schema &modules) {
  const std::vector<const lysc_node *> all = modules.find_all(entry.at);
  const auto found = std::ranges::find_if(all, [&](const lysc_node *node) {
    return std::ranges::any_of(modules.children(node),
                               [&](const lysc_node *below) { return module_name(below) == entry.module; });
  });
  return found == all.end() ? nullptr : *found;
}

bool is_on_the_way(const manifest &description, direction dir, const lysc_node *node, const schema &modules) {
  return std::ranges::any_of(description.entry_points, [&](const entry_point &entry) {
    const lysc_node *above = served_parent(entry, modules);
    const bool is_above = above != nullptr && is_within(above, node);
    return entry.dir == dir && (is_above || (entry.at == "/" && is_served(entry, node, modules)));
  });
}

std::function<bool(const lysc_node *)> client_nodes(const manifest &description, const schema &modules) {
  return [&](const lysc_node *node) { return is_on_the_way(description, direction::ox, node, modules); };
}

const lysc_node *manifest_node(const manifest &description, std::string_view path, const schema &modules) {
  std::vector<const lysc_node *> all = modules.find_all(path);
  if (all.size() > 1) {
    std::erase_if(all, [&](const lysc_node *node) {
      return std::ranges::none_of(description.entry_points,
                                  [&](const entry_point &entry) { return is_served(entry, node, modules); });
    });
  }
  return all.size() == 1 ? all.front() : nullptr;
}

}  // namespace yfw
