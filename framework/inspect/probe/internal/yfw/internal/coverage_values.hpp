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

// These, and of texts more: the bounds of their length, a long one and one of other characters that fit the patterns,
// and one with what XML, JSON and paths must escape.
std::vector<std::string> thorough_values(const schema &modules, const lysc_node *leaf);

// Texts that are likely to match a pattern of YANG (the regular expressions of XML Schema), shortest first. Of a class
// of characters they have the first one or, with `last_of_class`, the last one.
std::vector<std::string> pattern_samples(std::string_view pattern, bool last_of_class = false);

}  // namespace yfw
