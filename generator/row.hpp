#pragma once

#include "table.hpp"

namespace ymapgen {

// Throws `error` unless `name` can stand in C code.
void expect_c_name(const std::string &name, const place &at);

// One line below `nodes`, given as its words, of which there is at least one. Throws `error`.
row parse_row(const std::vector<std::string> &words, const place &at);

}  // namespace ymapgen
