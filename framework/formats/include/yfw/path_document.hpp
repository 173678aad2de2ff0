// Documents of one path, for requests that no client wrote.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "yfw/data_tree.hpp"
#include "yfw/document.hpp"
#include "yfw/instance_path.hpp"
#include "yfw/node.hpp"

namespace yfw {

// The node of a step below `parent`, of lists the entry with the keys, added when missing.
data_node &add_step(data_tree &tree, data_node *parent, const path_step &step);

// Adds the nodes of a path to a tree and returns the last one; null for no steps. Of lists the entry with the keys.
data_node *add_path(data_tree &tree, const std::vector<path_step> &steps);

// A tree of one path as JSON, with an operation on its last node unless that is no_operation.
std::string text_for(const std::vector<path_step> &steps, const schema &modules, uint32_t operation = no_operation,
                     const std::optional<std::string> &value = {});

// A request that asks for one path, or, unless that is no_operation, carries out an operation on it. No file has it.
document request_for(const std::vector<path_step> &steps, const schema &modules, uint32_t operation = no_operation,
                     const std::optional<std::string> &value = {});

}  // namespace yfw
