// What an edit would make a device do, and all that is wrong with it.
#pragma once

#include <string>
#include <vector>

#include "yfw/native_request.hpp"

namespace yfw {

// A native path that must be read before the edit, or while it is translated.
struct needed_read {
  std::string path;  // without keys for one that the plug-in looked up, which holds for the entry that is edited
  const yfw_node_t *source_node;  // the client's node whose `create`, `delete` or "none" asks whether it is there;
                                  // null: the plug-in looked it up
};

struct edit_plan {
  native_request request;              // of all that is in order
  std::vector<client_error> problems;  // in the order of the document
  std::vector<needed_read> reads;      // each once
};

// Translates an edit as `translate_request` does, but sets aside what cannot be done and goes on with the rest: all
// problems are found. A node at the end of the client's tree that no native edit is made for is one. Throws `error` for
// a client request that is no edit.
edit_plan plan_request(document &request, client_request client, const plugin &mapping, trace_log &log);

// The container or list entry that a call was made for as a whole, as `replace` and `delete` of one do. Null for a call
// of a leaf, and for one that no node is known of.
const yfw_node_t *whole_source_node(const native_operation &call);

// The operation that holds for a client's node: its own or the nearest one above it, else `default_operation`.
uint32_t operation_in_force(const yfw_node_t &node, uint32_t default_operation);

}  // namespace yfw
