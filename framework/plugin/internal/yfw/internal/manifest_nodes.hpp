// Where in the modules the paths of a manifest are. Its plain names may mean nodes of several modules: there is more
// than one '/interfaces/interface' in the world. The entry points determine which of them is meant.
#pragma once

#include <functional>
#include <string_view>

#include "yfw/manifest.hpp"
#include "yfw/schema.hpp"

namespace yfw {

// The node below which an entry point serves nodes of its module. Null for the top, and when there is none.
const lysc_node *served_parent(const entry_point &entry, const schema &modules);

// Whether an entry point of that direction serves the node, or something below it.
bool is_on_the_way(const manifest &description, direction dir, const lysc_node *node, const schema &modules);

// The test whether a node is of the client model and leads to mapped nodes: whether an entry point for requests
// serves it, or something below it. Manifest and modules must outlive the result.
std::function<bool(const lysc_node *)> client_nodes(const manifest &description, const schema &modules);

// The node of a path of the manifest. Null when there is none, or when several may be meant.
const lysc_node *manifest_node(const manifest &description, std::string_view path, const schema &modules);

}  // namespace yfw
