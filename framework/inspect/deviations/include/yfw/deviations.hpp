// The YANG deviation module of a mapping: what it does not support of the client model (RFC 7950, section 7.20.3).
#pragma once

#include <string>
#include <vector>

#include "yfw/coverage.hpp"
#include "yfw/schema.hpp"

namespace yfw {

enum class deviate_kind {
  not_supported,  // the node and all below it
  read_only,      // becomes `config false`
  values,         // an enumeration without the values that are rejected
};

struct deviation {
  deviate_kind kind;
  const lysc_node *target;          // may be a choice or a case
  std::vector<std::string> values;  // of kind `values`: those that remain

  bool operator==(const deviation &) const = default;
};

struct deviations {
  std::vector<deviation> statements;  // in the order of the modules
  std::vector<std::string> remarks;   // what no deviation can express: path, colon, text
  std::vector<std::string> rejected;  // deviations that would break the model, and why: path, colon, text
};

// The smallest set of statements for a measurement. It does not contain statements that would break the model: the
// removal of a key, of a mandatory node, or of a node that a `when`, a `must` or a leafref refers to.
deviations plan_deviations(const coverage &measured, const schema &modules);

struct deviation_module_names {
  std::string name;
  std::string ns;
  std::string revision;  // empty: the newest one of the deviated modules
};

// The text of the module. Throws `error` when it is not valid together with the modules in force.
std::string deviation_module(const deviations &plan, const coverage &measured, const schema &modules,
                             const deviation_module_names &names);

// Reads a deviation module. `file` is for messages. Throws `error` when it is not valid together with the modules in
// force, and for deviations other than those of `deviate_kind`, such as a new default.
deviations read_deviations(const std::string &text, const std::string &file, const schema &modules);

// The differences between what is stated and what was measured, in both directions: a line each, path first.
std::vector<std::string> drift(const deviations &stated, const deviations &measured, const coverage &of);

}  // namespace yfw
