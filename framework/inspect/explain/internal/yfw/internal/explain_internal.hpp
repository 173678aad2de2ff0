// What the sources of the explanation share.
#pragma once

#include <functional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/data_tree.hpp"
#include "yfw/explain.hpp"

namespace yfw {

// A path with a value for each key: given ones, or samples.
struct full_path {
  std::vector<path_step> steps;
  std::vector<std::string> made_up_keys;
};

// Throws `error` for a path that the modules do not have, and for one that may mean nodes of several modules none of
// which, or more than one, is served.
full_path complete_path(std::string_view path, const schema &modules, const manifest &description);
full_path complete_path(const lysc_node *node, const schema &modules);

// Whether an entry point, of that direction or of any, is at or below the same top-level node.
bool serves_model_of(const manifest &description, direction dir, const lysc_node *node, const schema &modules);
bool serves_model_of(const manifest &description, const lysc_node *node, const schema &modules);

// Does some work with a trace log of its own, and passes on to `log` what it wrote.
std::vector<traced_function> traced(trace_log &log, const std::function<void(trace_log &)> &work);

// Adds the hand-written function of the leaf when it left no trace itself: the one that a generated body calls, or a
// walker. `has_function` tells whether the plug-in has one of that name.
void add_untraced(std::vector<traced_function> &walk, const lysc_node *leaf,
                  const std::function<bool(const std::string &)> &has_function);

// All leaves of a tree, in order.
std::vector<reported_leaf> leaves_of(const data_tree &tree);

bool has_function(const plugin &mapping, const std::string &name);

// The reply to native data that is one leaf with a value.
explained_reply explain_reply(const std::vector<path_step> &native, const std::string &value, const schema &modules,
                              const plugin &mapping, trace_log &log);

}  // namespace yfw
