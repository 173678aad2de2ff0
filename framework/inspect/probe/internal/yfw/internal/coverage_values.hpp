// Sample values of a leaf.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "yfw/schema.hpp"

namespace yfw {

// Valid values of a leaf: all enumeration values, identities and booleans of its type, both ends of its ranges, one
// string that matches its patterns. Empty when none was found.
std::vector<std::string> sample_values(const schema &modules, const lysc_node *leaf);

// The same, and more strings: of the shortest and the longest length, a long one, one of other characters that match
// the patterns, and one with characters that XML, JSON and paths must escape.
std::vector<std::string> thorough_values(const schema &modules, const lysc_node *leaf);

// Strings that probably match a YANG pattern (a regular expression of XML Schema), shortest first. They contain the
// first character of each class or, with `last_of_class`, the last one.
std::vector<std::string> pattern_samples(std::string_view pattern, bool last_of_class = false);

}  // namespace yfw
