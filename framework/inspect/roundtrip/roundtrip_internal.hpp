// What the checks of the round-trip properties share.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "yfw/coverage.hpp"
#include "yfw/internal/explain_internal.hpp"
#include "yfw/mapping_service.hpp"
#include "yfw/memory_device.hpp"
#include "yfw/path_document.hpp"
#include "yfw/roundtrip.hpp"

namespace yfw {

// One run of all checks: what they need, and the differences and counts that they add.
class roundtrip_run {
 public:
  roundtrip_run(const schema &modules_in_force, const plugin &checked, trace_log &trace)
      : modules(modules_in_force), mapping(checked), log(trace) {
    result.counts.resize(std::size(all_properties));
  }

  property_count &count(property which) {
    return result.counts[static_cast<size_t>(which)];
  }

  void report(property which, const lysc_node *leaf, const std::optional<std::string> &value, std::string what,
              std::string tree) {
    result.differences.push_back({which, path(leaf), value, std::move(what), std::move(tree)});
  }

  // The steps to a node, with sample keys. Throws `error` when a key has no sample value.
  std::vector<path_step> steps_to(const lysc_node *node) const;

  mapping_service service(native_device &device) const {
    return {mapping, device, log};
  }

  const schema &modules;
  const plugin &mapping;
  trace_log &log;
  roundtrip result;
};

// The values of all leaves of a tree except keys, in document order.
std::vector<std::string> values_of(const data_tree &tree);

// Checks set-get, delete-get and absent-get of a configuration leaf of the client model. `others`: the leaves that
// absent-get may set beside it.
void check_client_leaf(roundtrip_run &run, const lysc_node *leaf, const std::vector<const lysc_node *> &others);

// Checks native-stable of a native leaf.
void check_native_leaf(roundtrip_run &run, const lysc_node *leaf);

}  // namespace yfw
