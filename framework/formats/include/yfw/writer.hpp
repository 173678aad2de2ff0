// Data trees as text: XML (RFC 7950, RFC 6241) and JSON (RFC 7951, RFC 7952).
#pragma once

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

#include "yfw.h"
#include "yfw/data_tree.hpp"

namespace yfw {

// An XML element around the data, with elements of its own that come before it:
// {"edit-config", netconf_ns, {}, {{"target", netconf_ns, {}, {{"candidate", netconf_ns}}}}}
struct wrapper {
  std::string tag;
  std::string ns;
  std::vector<std::pair<std::string, std::string>> attributes = {};
  std::vector<wrapper> before = {};
  std::string text = {};  // of an element without others
};

struct write_options {
  bool pretty = true;                                // two spaces a level and a newline at the end; else no whitespace
  std::vector<wrapper> wrappers = {};                // XML only, outermost first
  uint32_t default_operation = YFW_OPERATION_MERGE;  // in force at the top; no_operation: none
};

// Both write the tree's groups in order. A node's operation is written where it differs from the one in force, which is
// that of the options at the top: in XML as the attribute nc:operation, in JSON as the annotation
// ietf-netconf:operation. Identities of other modules than their leaf's get a prefix. Both throw `error` with the path
// of a value that holds a character that the format or YANG does not allow, and when the stream fails.

// A namespace is declared as the default one where it changes.
void write_xml(std::ostream &out, const data_tree &tree, const write_options &options = {});

// One object. Names are qualified at the top and where the module changes; a leaf without a value is null, or just its
// annotation when it has an operation. Throws also for a namespace that no module has.
void write_json(std::ostream &out, const data_tree &tree, const write_options &options = {});

}  // namespace yfw
