// The probes of one leaf, in requests and in replies.
#pragma once

#include <map>
#include <vector>

#include "yfw/coverage.hpp"

namespace yfw {

// Calls a plug-in with each operation on a leaf of the client model.
coverage_row probe_client_leaf(const schema &modules, const lysc_node *leaf, const plugin &mapping, trace_log &log);

// Calls a plug-in with replies that contain one native leaf. The effects are the differences between what is reported
// for them and for the same list entry without the leaf.
coverage_row probe_native_leaf(const schema &modules, const lysc_node *leaf, const plugin &mapping, trace_log &log);

// The plug-in's error for a request: status, rejected tag, text. Empty when it succeeded.
std::string answer_text(const probe_outcome &outcome);

// Sets the state and reason that follow from the probes.
void set_state(coverage_cell &cell);

}  // namespace yfw
