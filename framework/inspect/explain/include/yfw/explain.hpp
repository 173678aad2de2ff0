// What a mapping does with one leaf, of either model, and which of its functions do it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/native_request.hpp"
#include "yfw/plugin.hpp"
#include "yfw/schema.hpp"
#include "yfw/trace.hpp"

namespace yfw {

// What a function of a plug-in is, by its name: `walker` finds the next one by its tag, `generated` and `by_hand` map a
// node, `no_op` does nothing, `helper` is any other, a translator of values say.
enum class function_role { walker, generated, by_hand, no_op, helper };

// The words of reports: "hand-written", "no-op".
std::string_view to_string(function_role role);

// A function that was called.
struct traced_function {
  std::string name;
  function_role role;
  unsigned line;                  // of its first trace point; 0: it left none, and is known by its name
  unsigned depth;                 // in the functions that were running then
  std::vector<std::string> said;  // texts of its points other than "Start" and "End"
};

// The functions of the long-form trace lines, in the order in which they were entered.
std::vector<traced_function> traced_functions(const std::vector<std::string> &lines);

// The function that mapped the leaf: the hand-written one where a generated one calls it. Null when none left a trace.
const traced_function *answering(const std::vector<traced_function> &walk, const lysc_node *leaf);

// A leaf of a reply.
struct reported_leaf {
  std::string path;
  std::string value;

  bool operator==(const reported_leaf &) const = default;
};

// What becomes of one value, or why none does.
struct value_mapping {
  std::string value;
  std::vector<std::string> results;  // in the other model, in the order of the calls
  std::string refusal;               // empty when it is taken
};

// A request with one leaf.
struct explained_request {
  std::string_view operation;                // "get", "set", "delete"
  std::optional<std::string> value;          // that is set
  std::vector<traced_function> walk;         // empty when the request is refused before the plug-in sees it
  std::vector<native_operation> calls;       // without causes
  std::string refusal;                       // empty when it is carried out
  std::string answer;                        // of a refused one: what the plug-in answered, status first
  std::vector<std::string> reported_by;      // of a read that names no native leaf: those that replies report it of
  std::vector<value_mapping> values;         // of a set: values of the leaf; of a get: of the native leaves
  std::vector<reported_leaf> before, after;  // what a client reads of an empty device's list entry around an edit
};

// Native data with one leaf.
struct explained_reply {
  std::string value;
  std::vector<traced_function> walk;
  std::vector<reported_leaf> reported;
  std::vector<note> notes;  // what is left out and why
  std::string refusal;      // of the whole reply; empty when it is translated
};

struct explanation {
  std::string path;  // with all keys
  const lysc_node *leaf;
  std::vector<std::string> made_up_keys;    // "interface[name='a']": those that were not given
  std::vector<explained_request> requests;  // of a leaf of the high model
  std::vector<explained_reply> replies;     // of a native leaf, one a value
};

struct explain_options {
  std::vector<std::string_view> operations = {"get", "set", "delete"};
  std::optional<std::string> value;  // none: samples of the leaf's type
};

// Explains the leaf at a path of plain names, or with modules' names as prefixes; keys may be left out. Throws `error`
// for a path that the modules do not have, with a name that is near, and for one that is no leaf or of a model that the
// plug-in does not serve. A value or an operation that is refused is part of the result.
explanation explain(std::string_view path, const explain_options &options, const schema &modules, const plugin &mapping,
                    trace_log &log);

}  // namespace yfw
