#include "yfw/internal/schema_steps.hpp"

#include <algorithm>

#include "yfw/internal/manifest_nodes.hpp"

namespace yfw {

static bool is_key_of(std::string_view key, std::string_view qualifier, std::string_view path) {
  return key.size() == qualifier.size() + 1 + path.size() && key.ends_with(path) && key.starts_with(qualifier) &&
         key[qualifier.size()] == ' ';
}

const schema_steps &path_table::steps(std::string_view path, std::string_view ns) {
  return known(ns, path, [&] { return schema_.find(path, ns); });
}

const schema_steps &path_table::steps(std::string_view path, const manifest &description) {
  return known({}, path, [&] { return manifest_node(description, path, schema_); });
}

template <typename find_t>
const schema_steps &path_table::known(std::string_view qualifier, std::string_view path, const find_t &node) {
  if (last_ != nullptr && last_->following != nullptr && is_key_of(last_->following->key, qualifier, path)) {
    last_ = last_->following;
    return last_->steps;
  }
  const auto [found, added] = known_.try_emplace(std::string(qualifier).append(1, ' ').append(path));
  known_path &result = found->second;
  if (added) {
    result.key = found->first;
    for (const lysc_node *step = node(); step != nullptr; step = parent(step)) {
      result.steps.push_back(step);
    }
    std::ranges::reverse(result.steps);
  }
  if (last_ != nullptr) {
    last_->following = &result;
  }
  last_ = &result;
  return result.steps;
}

}  // namespace yfw
