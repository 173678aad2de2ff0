// Paths of data nodes: the schema node of each step and the keys of its list entry.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "yfw.h"
#include "yfw/schema.hpp"

namespace yfw {

// One step of a path. Keys that are not known select all entries of a list.
struct path_step {
  const lysc_node *node;
  std::vector<std::pair<std::string_view, std::string>> keys;
};

// /list[key='x']/leaf with plain names, in the form of an instance-identifier (RFC 7950, section 9.13).
std::string path_text(const std::vector<path_step> &steps);

// A key's value in a path: in single quotes, or in double ones if the text holds a single one.
std::string key_literal(const std::string &text);

// The steps to a node of a document, with the keys that it and the entries above it have. Envelopes are no steps.
std::vector<path_step> steps_to(const yfw_node_t &node);

// The path of a node of a document with plain names and the keys that it has: /library/book[title="Emma"]/price.
// Envelopes around data are left out.
std::string path(const yfw_node_t &node);

// One step of such a path, "/book[title="Emma"]"; keys are looked for among `children`.
std::string step_text(const yfw_node_t &node, std::span<const yfw_node_t> children);

// `text` in double quotes, or in single ones when it holds a double quote.
std::string path_literal(std::string_view text);

}  // namespace yfw
