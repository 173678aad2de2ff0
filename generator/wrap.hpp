// Breaks long lines, so that generated sources have their final form when they are written.
#pragma once

#include <string>
#include <string_view>

namespace ymapgen {

// The widest line, in columns.
inline constexpr std::size_t line_width = 120;

// `text` with each longer line of code broken where the sum of these costs is least:
//
//   22   after `=`, or before the name that a declaration declares: the next line is indented by 4
//   41   after the `(` of a call: by 4 more than the line that the call begins in
//  140   after the `(` of a function definition: by 4
//   41   after a comma in parentheses: the next line is aligned with the first argument or parameter
//   45   after `&&` in parentheses: with the beginning of the condition
//  220   before the name of a function that is being defined: not indented
//
// Each column beyond the width costs a million. Of several cheapest layouts the one that breaks later is chosen. Nested
// parentheses, literals and comments are never broken.
std::string wrapped(std::string_view text);

}  // namespace ymapgen
