// What the device is asked to set, delete or read for a client's request: the calls that a plug-in makes of it.
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
#include "yfw/plugin.hpp"
#include "yfw/schema.hpp"
#include "yfw/trace.hpp"

namespace yfw {

struct native_request {
  client_request client;
  std::vector<native_operation> calls;  // in the order in which the plug-in made them
  std::vector<note> notes;              // what is not done and why
};

// Lets the plug-in translate a request. A leaf of a read that has no native counterpart is left out with a note, the
// rest is served. Throws `error`, with the place in the document, for data that the modules do not have, for a write of
// a leaf that is not mapped or whose value has no native counterpart, and for whatever the plug-in refuses.
native_request translate_request(document &request, client_request client, const plugin &mapping, trace_log &log);

// What a plug-in makes of a request, unjudged.
struct probe_outcome {
  uint32_t status = 0;                // what the entry point returned; the first one that is not 0
  std::string error_tag;              // the tag that it rejected, or empty
  std::vector<std::string> problems;  // texts of the error points that were reached
  std::vector<native_operation> calls;
  bool value_lost = false;  // a call of a write carries neither a value nor a delete
};

// Hands a request to the plug-in whatever the modules say of its values and of what may be edited, and does not judge
// what comes of it. Throws `error` only for data that the modules do not have and that no entry point serves.
probe_outcome probe_request(document &request, client_request client, const plugin &mapping, trace_log &log);

// The net effect of the calls as one native tree: for reads a subtree filter (RFC 6241, section 6), whose nodes have no
// values but for keys; for writes the content of an edit-config's `config`, where a later call on a leaf replaces an
// earlier one.
data_tree native_tree(const native_request &request, const schema &modules);

}  // namespace yfw
