// The native operations of an edit, and all of its errors.
#pragma once

#include <string>
#include <vector>

#include "yfw/native_request.hpp"

namespace yfw {

// A native path that must be read before the edit, or while it is translated.
struct needed_read {
  std::string path;               // without keys for a lookup of the plug-in, which is in the edited entry
  const yfw_node_t *source_node;  // the client's node whose `create`, `delete` or "none" depends on its presence;
                                  // null: a lookup of the plug-in
};

struct edit_plan {
  native_request request;              // without the nodes that have errors
  std::vector<client_error> problems;  // in the order of the document
  std::vector<needed_read> reads;      // each once
};

// Translates an edit as `translate_request` does, but skips nodes with errors, so that all errors are found. A leaf or
// empty node without a resulting native edit is one, too. Throws `error` for a client request that is not an edit.
edit_plan plan_request(document &request, client_request client, const plugin &mapping, trace_log &log);

// The container or list entry that the operation stands for as a whole, as with `replace` and `delete`. Null for an
// operation on a leaf, and for one without a known source node.
const yfw_node_t *whole_source_node(const native_operation &call);

// The operation in force for a client's node: its own or the nearest one above it, else `default_operation`.
uint32_t operation_in_force(const yfw_node_t &node, uint32_t default_operation);

}  // namespace yfw
