// An explanation in the forms in which it is printed.
#pragma once

#include <string>

#include "yfw/explain.hpp"

namespace ymap {

std::string explanation_as_text(const yfw::explanation &told);
std::string explanation_as_json(const yfw::explanation &told);

}  // namespace ymap
