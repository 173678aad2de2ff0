// The naming scheme of generated functions and files.
#pragma once

#include <string>
#include <vector>

namespace ymapgen {

// A YANG name as a part of a C name: without hyphens.
std::string squashed(const std::string &yang_name);

// A YANG name as a C name: hyphens become underscores.
std::string underscored(const std::string &yang_name);

std::string lower_case(std::string text);

// The path part of a node below `ancestors`, the top node first: the top node, the parent and the node itself, squashed
// and joined by underscores, each once. What stands between top node and parent is not named.
std::string path_part(const std::vector<std::string> &ancestors, const std::string &name);

}  // namespace ymapgen
