// Runs the program within bounds.
#pragma once

#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>

namespace hostile {

struct outcome {
  int exit_code = 0;   // 124: it took too long
  std::string errors;  // standard error
};

// Runs `ymap` with `arguments`, as the shell has them, in no more than so much address space, unless a sanitizer is in
// the program, and for no more than `seconds`. `feed` writes its standard input.
outcome run_ymap(const std::string &arguments, size_t megabytes, unsigned seconds,
                 const std::function<void(std::FILE *)> &feed = {});

}  // namespace hostile
