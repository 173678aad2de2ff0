// Values to try a leaf with.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "yfw/schema.hpp"

namespace yfw {

// Valid values of a leaf: all names that its type has, both ends of its ranges, one text that fits its patterns. Empty
// when no such value was found.
std::vector<std::string> sample_values(const schema &modules, const lysc_node *leaf);

// Texts that are likely to match a pattern of YANG (the regular expressions of XML Schema), shortest first.
std::vector<std::string> pattern_samples(std::string_view pattern);

}  // namespace yfw
