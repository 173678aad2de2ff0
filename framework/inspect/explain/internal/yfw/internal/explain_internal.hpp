// What the sources of the explanation share.
#pragma once

#include <functional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/data_tree.hpp"
#include "yfw/explain.hpp"
#include "yfw/manifest.hpp"

namespace yfw {

// A path with a value for each key: given or sample keys.
struct full_path {
  std::vector<path_step> steps;
  std::vector<std::string> sample_keys;
};

// Throws `error` for a path that is not in the modules, and for an ambiguous one: it matches nodes of several modules,
// of which none or more than one is served.
full_path complete_path(std::string_view path, const schema &modules, const manifest &description);
full_path complete_path(const lysc_node *node, const schema &modules);

// Whether an entry point, of that direction or of any, is at or below the same top-level node.
bool serves_model_of(const manifest &description, direction dir, const lysc_node *node, const schema &modules);
bool serves_model_of(const manifest &description, const lysc_node *node, const schema &modules);

// Runs `work` with a trace log of its own, copies its lines to `log`, and returns the functions in them.
std::vector<traced_function> trace_functions(trace_log &log, const std::function<void(trace_log &)> &work);

// Adds the custom function of the leaf when it left no trace: the one that a generated body or a walker calls.
// `has_function` returns whether the plug-in has a function of that name.
void add_untraced(std::vector<traced_function> &walk, const lysc_node *leaf,
                  const std::function<bool(const std::string &)> &has_function);

// All leaves of a tree, in order.
std::vector<reported_leaf> leaves_of(const data_tree &tree);

bool has_function(const plugin &mapping, const std::string &name);

// The reply to native data that is one leaf with a value.
explained_reply explain_reply(const std::vector<path_step> &native, const std::string &value, const schema &modules,
                              const plugin &mapping, trace_log &log);

}  // namespace yfw
