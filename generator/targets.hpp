#pragma once

#include "model.hpp"
#include "schema.hpp"

namespace ymapgen {

// Finds the leaf that an absolute path without prefixes names. It must belong to one of the table's target modules,
// which must be loaded. Throws `error` at `at`.
target_path resolve_target(const schema &modules, const table &source, const std::string &path, const place &at);

}  // namespace ymapgen
