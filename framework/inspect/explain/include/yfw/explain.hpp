// What a mapping does with one leaf of either model, and in which functions.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/native_request.hpp"
#include "yfw/schema.hpp"

namespace yfw {

class plugin;
class trace_log;

// The role of a plug-in's function, by its name: `walker` calls the function of the next tag, `generated` and `custom`
// map a node, `no_op` does nothing, `helper` is any other, such as a translator of values.
enum class function_role { walker, generated, custom, no_op, helper };

// The names in reports: "custom", "no-op".
std::string_view to_string(function_role role);

// A function that was called.
struct traced_function {
  std::string name;
  function_role role;
  unsigned line;                      // of its first trace point; 0 when it has none and is known by its name
  unsigned depth;                     // how many functions were running when it was called
  std::vector<std::string> messages;  // of its points, other than "Start" and "End"
};

// The functions of the long-form trace lines, in the order in which they were entered.
std::vector<traced_function> traced_functions(const std::vector<std::string> &lines);

// The function that mapped the leaf: the custom one where a generated one calls it. Null when none left a trace.
const traced_function *mapping_function(const std::vector<traced_function> &walk, const lysc_node *leaf);

// A leaf of a reply.
struct reported_leaf {
  std::string path;
  std::string value;

  bool operator==(const reported_leaf &) const = default;
};

// The translation of one value, or why it is rejected.
struct value_mapping {
  std::string value;
  std::vector<std::string> results;  // its values in the other model, in the order of the calls
  std::string rejection;             // empty when it is accepted
};

// A request with one leaf.
struct explained_request {
  std::string_view operation;           // "get", "set", "delete"
  std::optional<std::string> value;     // that is set
  std::vector<traced_function> walk;    // empty when the request is rejected before the plug-in is called
  std::vector<native_operation> calls;  // without source nodes
  std::string rejection;                // empty when it is applied
  std::string answer;                   // when rejected: the plug-in's error, status first
  std::vector<std::string>
      reported_by;                    // of a read without a native read: the native leaves that replies report it from
  std::vector<value_mapping> values;  // of a set: values of the leaf; of a get: values of the native leaves
  std::vector<reported_leaf> before,
      after;  // what a client reads in the list entry before and after an edit of an empty device
};

// Native data with one leaf.
struct explained_reply {
  std::string value;
  std::vector<traced_function> walk;
  std::vector<reported_leaf> reported;
  std::vector<note> notes;  // what is omitted, and why
  std::string rejection;    // of the whole reply; empty when it is translated
};

struct explanation {
  std::string path;  // with all keys
  const lysc_node *leaf;
  std::vector<std::string> sample_keys;     // "interface[name='a']": those that were not given
  std::vector<explained_request> requests;  // for a leaf of the client model
  std::vector<explained_reply> replies;     // for a native leaf, one per value
};

struct explain_options {
  std::vector<std::string_view> operations = {"get", "set", "delete"};
  std::optional<std::string> value;  // none: sample values of the leaf's type
};

// Explains the leaf at a path of plain names, or with module names as prefixes; missing keys become sample keys. Throws
// `error` for a path that is not in the modules, with a similar name, and for one that is not a leaf or belongs to a
// model that the plug-in does not serve. A rejected value or operation is part of the result.
explanation explain(std::string_view path, const explain_options &options, const schema &modules, const plugin &mapping,
                    trace_log &log);

}  // namespace yfw
