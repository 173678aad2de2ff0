// The measurement that several commands report.
#pragma once

#include "setup.hpp"
#include "yfw/coverage.hpp"

namespace ymap {

// Measures the mapping, and shows the progress.
yfw::coverage measure(setup &with);

}  // namespace ymap
