// Finding one's way in native data.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "yfw/device.hpp"

namespace yfw {

// The value of the key leaf `name` of a list entry, or null.
const std::string *key_text(const native_node &entry, std::string_view name);

// Whether a step of a native path leads to the node: the same schema node, and an entry with the keys that it has.
bool leads_to(const path_step &step, const native_node &node);

// "[name='x']": the keys of a list entry; of a leaf-list's node its value; else nothing.
std::string predicates(const native_node &node);

}  // namespace yfw
