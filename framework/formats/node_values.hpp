// Values of output trees, as texts and documents have them.
#pragma once

#include <string>
#include <string_view>

#include "yfw/data_tree.hpp"
#include "yfw/error.hpp"
#include "yfw/internal/text.hpp"

namespace yfw {

// Throws `error` with the node's path for a value that YANG does not have.
inline void check_text(const data_node &node) {
  if (const text_fault fault = first_fault(*node.value); fault.kind != bad_text::none) {
    throw error({"", 0, path(node)},
                "the value " + std::string(fault_words(fault.kind)) + " at byte " + std::to_string(fault.offset + 1));
  }
}

// The module of an identity as a value, when it must be named: when it is not that of the leaf. Else "".
inline std::string_view foreign_module(const schema &modules, const data_node &node) {
  if (node.schema == nullptr || !node.value) {
    return "";
  }
  const std::string_view module = modules.identity_module(node.schema, *node.value);
  return module == module_name(node.schema) ? "" : module;
}

}  // namespace yfw
