// What the checks of the laws share.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "yfw/coverage.hpp"
#include "yfw/mapping_service.hpp"
#include "yfw/memory_device.hpp"
#include "yfw/internal/explain_internal.hpp"
#include "yfw/path_document.hpp"
#include "yfw/roundtrip.hpp"

namespace yfw {

// Collects what the checks find, and holds what they need.
class law_bench {
 public:
  law_bench(const schema &modules_in_force, const plugin &checked, trace_log &trace)
      : modules(modules_in_force), mapping(checked), log(trace) {
    result.counts.resize(std::size(all_laws));
  }

  law_count &count(law which) {
    return result.counts[static_cast<size_t>(which)];
  }

  void report(law which, const lysc_node *leaf, const std::optional<std::string> &value, std::string what,
              std::string tree) {
    result.broken.push_back({which, path(leaf), value, std::move(what), std::move(tree)});
  }

  // The steps to a node, with samples as keys. Throws `error` when a key has none.
  std::vector<path_step> steps_to(const lysc_node *node) const;

  mapping_service service(native_device &device) const {
    return {mapping, device, log};
  }

  const schema &modules;
  const plugin &mapping;
  trace_log &log;
  roundtrip result;
};

// The values of all leaves of a tree but keys, in order.
std::vector<std::string> values_of(const data_tree &tree);

// Laws of a configuration leaf of the client's model. `others` are those that may stand beside it.
void check_client_leaf(law_bench &bench, const lysc_node *leaf, const std::vector<const lysc_node *> &others);

// The law of a native leaf.
void check_native_leaf(law_bench &bench, const lysc_node *leaf);

}  // namespace yfw
