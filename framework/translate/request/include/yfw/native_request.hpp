// The native operations of a client's request: what the device sets, deletes or reads for it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "yfw/client_request.hpp"
#include "yfw/data_tree.hpp"
#include "yfw/native_operation.hpp"
#include "yfw/note.hpp"
#include "yfw/schema.hpp"

namespace yfw {

class plugin;
class trace_log;

struct native_request {
  client_request client;
  std::vector<native_operation> calls;  // in the order in which the plug-in emitted them
  std::vector<note> notes;              // omitted nodes and why
};

// Translates a request. An unmapped leaf of a read is omitted with a note. Throws `client_error`, with the place in the
// document, for data that the modules do not have, for a write of an unmapped leaf or value, and for what the plug-in
// rejects.
native_request translate_request(document &request, client_request client, const plugin &mapping, trace_log &log);

// The unchecked result of a plug-in for a request.
struct probe_outcome {
  uint32_t status = 0;                // of the entry point; the first one that is not 0
  std::string error_tag;              // the tag that it rejected, or empty
  std::vector<std::string> problems;  // texts of the reached error points
  std::vector<native_operation> calls;
  bool value_lost = false;  // an operation of a write has neither a value nor a delete
};

// Translates a request without checks of values, of what may be edited, and of the result. Throws `error` only for data
// that the modules do not have and that no entry point serves.
probe_outcome probe_request(document &request, client_request client, const plugin &mapping, trace_log &log);

// The net effect of the operations as one native tree: for reads a subtree filter (RFC 6241, section 6), whose nodes
// have no values but for keys; for writes the content of an edit-config's `config`, where a later operation on a leaf
// replaces an earlier one.
data_tree native_tree(const native_request &request, const schema &modules);

}  // namespace yfw
