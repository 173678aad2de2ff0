#include "schema_steps.hpp"

#include <algorithm>

namespace yfw {

const schema_steps &path_table::steps(std::string_view path, std::string_view ns) {
  key_.assign(ns).append(1, ' ').append(path);
  const auto [found, added] = known_.try_emplace(key_);
  if (added) {
    for (const lysc_node *node = schema_.find(path, ns); node != nullptr; node = parent(node)) {
      found->second.push_back(node);
    }
    std::reverse(found->second.begin(), found->second.end());
  }
  return found->second;
}

}  // namespace yfw
