#pragma once

#include "model.hpp"

namespace ymapgen {

// Throws `error` unless the action and the options of `line` fit a node of that kind in a table of that direction.
void expect_fit(const row &line, const node &what, direction which);

}  // namespace ymapgen
