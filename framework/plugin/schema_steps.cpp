#include "yfw/internal/schema_steps.hpp"

#include <algorithm>

#include "yfw/internal/manifest_nodes.hpp"

namespace yfw {

const schema_steps &path_table::steps(std::string_view path, std::string_view ns) {
  key_.assign(ns).append(1, ' ').append(path);
  return known([&] { return schema_.find(path, ns); });
}

const schema_steps &path_table::steps(std::string_view path, const manifest &description) {
  key_.assign(path);
  return known([&] { return manifest_node(description, path, schema_); });
}

template <typename find_t>
const schema_steps &path_table::known(const find_t &node) {
  const auto [found, added] = known_.try_emplace(key_);
  if (added) {
    for (const lysc_node *step = node(); step != nullptr; step = parent(step)) {
      found->second.push_back(step);
    }
    std::reverse(found->second.begin(), found->second.end());
  }
  return found->second;
}

}  // namespace yfw
