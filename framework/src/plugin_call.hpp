// The calls of a plug-in's functions: every one goes through here, so that it can be captured.
#pragma once

#include <string>
#include <string_view>

#include "context.hpp"
#include "yfw/plugin.hpp"

namespace yfw {

// The forms of the functions that are called: of an entry point, and of the two kinds of defaults functions.
enum class call_form { entry, report_defaults, create_defaults };

// "report-defaults"
std::string_view word(call_form form);

// Calls `function`, with the context's output root as output, and returns its status. `node` is null for
// `report_defaults`. While captures are taken, the call becomes one.
uint32_t call_plugin(context &ctx, const plugin &mapping, call_form form, const std::string &function,
                     yfw_node_t *node);

// Calls it without a capture.
uint32_t call_directly(context &ctx, const plugin &mapping, call_form form, const std::string &function,
                       yfw_node_t *node);

}  // namespace yfw
