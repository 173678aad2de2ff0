#pragma once

#include <cstddef>
#include <functional>

namespace yfw {

// Is told how far long work has come: how much is done, and of how much.
using progress_report = std::function<void(size_t done, size_t total)>;

}  // namespace yfw
