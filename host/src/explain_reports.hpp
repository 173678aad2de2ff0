// An explanation as text and as JSON.
#pragma once

#include <string>

#include "yfw/explain.hpp"

namespace ymap {

std::string explanation_as_text(const yfw::explanation &explanation);
std::string explanation_as_json(const yfw::explanation &explanation);

}  // namespace ymap
