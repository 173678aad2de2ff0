// Entry-point dispatch: which nodes of a client's request go to which entry point of a plug-in.
#pragma once

#include <string>
#include <vector>

#include "yfw/internal/plugin_input.hpp"
#include "yfw/note.hpp"
#include "yfw/plugin.hpp"

namespace yfw {

// A node for an entry point, or, with `defaults`, a created list entry.
struct dispatch {
  std::vector<yfw_node_t *> ancestors;  // open above it, outermost first
  yfw_node_t *key = nullptr;            // first key leaf of the innermost list entry above, or null
  const yfw_node_t *node = nullptr;     // the client's; null: the whole of `schema` is read
  const lysc_node *schema = nullptr;
  uint32_t inherited = YFW_OPERATION_MERGE;  // operation in force above `node`, or no_operation
  const entry_point *entry = nullptr;
  const default_function *defaults = nullptr;
};

struct dispatch_plan {
  std::vector<dispatch> dispatches;
  std::vector<note> notes;
};

// Finds the entry points for all nodes of the request; for a read that ends above entry points, all entry points below.
// In a read, an unmapped node becomes a note. Reports as errors unknown data, and in a write unmapped nodes and
// operations on nodes above the entry points, which no plug-in could carry out.
dispatch_plan plan_dispatch(document &request, const client_request &client, const manifest &description,
                            plugin_input &nodes, error_collector &errors);

}  // namespace yfw
