// Completes paths that a user typed.
#include <algorithm>

#include "yfw/internal/coverage_values.hpp"
#include "yfw/internal/explain_internal.hpp"
#include "yfw/manifest.hpp"

namespace yfw {
namespace {

// Adds sample values for the keys that are not given.
full_path with_sample_keys(std::vector<path_step> steps, const schema &modules) {
  full_path result;
  for (path_step &step : steps) {
    for (const std::string_view key : step.keys.empty() ? keys(step.node) : std::vector<std::string_view>()) {
      const std::vector<std::string> samples = sample_values(modules, modules.child(step.node, ns(step.node), key));
      if (samples.empty()) {
        throw error("no sample value of key " + in_quotes(key) + " of " + in_quotes(path(step.node)) +
                    " is known; name one in the path");
      }
      step.keys.emplace_back(key, samples.front());
      result.sample_keys.push_back(std::string(name(step.node)) + "[" + std::string(key) + "=" +
                                   key_literal(samples.front()) + "]");
    }
  }
  result.steps = std::move(steps);
  return result;
}

}  // namespace

full_path complete_path(std::string_view path, const schema &modules, const manifest &description) {
  const auto is_served = [&](const lysc_node *node) { return serves_model_of(description, node, modules); };
  return with_sample_keys(read_instance_path(path, modules, is_served, path_keys::optional), modules);
}

full_path complete_path(const lysc_node *node, const schema &modules) {
  std::vector<path_step> steps;
  for (; node != nullptr; node = parent(node)) {
    steps.insert(steps.begin(), path_step{node, {}});
  }
  return with_sample_keys(std::move(steps), modules);
}

}  // namespace yfw
