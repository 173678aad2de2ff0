// Paths of data nodes: the schema node of each step and the keys of its list entry.
#pragma once

#include <functional>
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

// Whether a node of the schema is of the client model; an empty function says so of all nodes.
using client_node_test = std::function<bool(const lysc_node *node)>;

enum class path_keys {
  required,  // each list entry with all of its keys
  optional,  // with all of them or none
};

// The data node of a path like /library/book[title='Emma']/price. A name may have the name or the prefix of its module
// before it, "lib:library"; where the names alone mean nodes of several modules, the one of the client model is meant.
// Throws `client_error` for a path of another form, names that the modules do not have, keys that are missing or given
// twice, and a path that still means several nodes.
std::vector<path_step> read_instance_path(std::string_view path, const schema &modules,
                                          const client_node_test &is_clients = {},
                                          path_keys wanted = path_keys::required);

// The keys of a step, as `data_tree` takes them. They are views of the step's.
std::vector<std::pair<std::string_view, std::string_view>> step_keys(const path_step &step);

// /list[key='x']/leaf with plain names, in the form of an instance-identifier (RFC 7950, section 9.13).
std::string path_text(const std::vector<path_step> &steps);

// A key's value in a path: in single quotes, or in double ones if the text holds a single one.
std::string key_literal(const std::string &text);

// The steps to a node of a document, with the keys that it and the entries above it have. Envelopes are no steps.
std::vector<path_step> steps_to(const yfw_node_t &node);

// The path of a node of a document with plain names and the keys that it has: /library/book[title="Emma"]/price.
// Envelopes around data are omitted.
std::string path(const yfw_node_t &node);

// One step of such a path, "/book[title="Emma"]"; keys are looked for among `children`.
std::string step_text(const yfw_node_t &node, std::span<const yfw_node_t> children);

// `text` in double quotes, or in single ones when it holds a double quote.
std::string path_literal(std::string_view text);

}  // namespace yfw
