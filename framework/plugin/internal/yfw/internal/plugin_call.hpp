// The calls of a plug-in's functions: every one goes through here, so that it can be watched.
#pragma once

#include <string>
#include <string_view>

#include "yfw/internal/call_tap.hpp"
#include "yfw/internal/context.hpp"
#include "yfw/plugin.hpp"

namespace yfw {

// "report-defaults"
std::string_view to_string(call_form form);

// Calls `function`, with the context's output root as output, and returns its status. `node` is null for
// `report_defaults`. An installed `call_tap` sees the call.
uint32_t call_plugin(context &ctx, const plugin &mapping, call_form form, const std::string &function,
                     yfw_node_t *node);

// Calls it unseen by the tap.
uint32_t call_directly(context &ctx, const plugin &mapping, call_form form, const std::string &function,
                       yfw_node_t *node);

}  // namespace yfw
