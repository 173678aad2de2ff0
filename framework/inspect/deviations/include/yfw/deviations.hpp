// The YANG module that tells clients what a mapping does not support of the high model (RFC 7950, section 7.20.3).
#pragma once

#include <string>
#include <vector>

#include "yfw/coverage.hpp"
#include "yfw/schema.hpp"

namespace yfw {

enum class deviate_kind {
  not_supported,  // the node and all below it
  read_only,      // becomes `config false`
  values,         // an enumeration without the values that are refused
};

struct deviation {
  deviate_kind kind;
  const lysc_node *target;          // may be a choice or a case
  std::vector<std::string> values;  // those that are left, of `values`

  bool operator==(const deviation &) const = default;
};

struct deviations {
  std::vector<deviation> statements;  // in the order of the modules
  std::vector<std::string> remarks;   // what no statement can tell: path, colon, text
  std::vector<std::string> refused;   // what would break the model, and why: path, colon, text
};

// The smallest set of statements that a measurement asks for. What would break the model is not among them: the removal
// of a key, of a mandatory node, or of what a `when`, a `must` or a leafref looks at.
deviations plan_deviations(const coverage &measured, const schema &modules);

struct deviation_module_names {
  std::string name;
  std::string ns;
  std::string revision;  // empty: the newest one of the modules that the module is about
};

// The module. Throws `error` when libyang refuses it together with the modules in force.
std::string deviation_module(const deviations &plan, const coverage &measured, const schema &modules,
                             const deviation_module_names &names);

// Reads a module of deviations. `file` is for messages. Throws `error` when it is not valid together with the modules
// in force, and for statements that no measurement can speak for, such as a new default.
deviations read_deviations(const std::string &text, const std::string &file, const schema &modules);

// How what is stated differs from what was measured, both ways: a line each, path first. Empty when it does not.
std::vector<std::string> drift(const deviations &stated, const deviations &measured, const coverage &of);

}  // namespace yfw
