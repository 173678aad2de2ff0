// The probes of one leaf: what comes of it in a request, and in a reply.
#pragma once

#include <map>
#include <vector>

#include "yfw/coverage.hpp"

namespace yfw {

// Asks a plug-in for each operation on a leaf of the high model.
coverage_row probe_high_leaf(const schema &modules, const lysc_node *leaf, const plugin &mapping, trace_log &log);

// Lets a plug-in translate replies that hold one native leaf. What is reported is compared with what is reported of the
// same list entry without the leaf.
coverage_row probe_native_leaf(const schema &modules, const lysc_node *leaf, const plugin &mapping, trace_log &log);

// What a plug-in answers when it does not take a request: status, tag, text. Empty when it takes it.
std::string answer_text(const probe_outcome &outcome);

// The state that the probes come to.
void judge(coverage_cell &cell);

}  // namespace yfw
