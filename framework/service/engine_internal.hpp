// What the sources of the engine share.
#pragma once

#include "yfw/engine.hpp"
#include "yfw/node.hpp"
#include "yfw/path_document.hpp"
#include "yfw/query.hpp"

namespace yfw {

// A fault of a request that no file has, and so no line that anybody could see.
client_error without_line(const client_error &fault);

}  // namespace yfw
