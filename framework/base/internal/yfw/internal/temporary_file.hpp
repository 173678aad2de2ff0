// A temporary file that grows at its end and then is read.
#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace yfw {

class temporary_file {
 public:
  // Throws `error` when the file cannot be made or written.
  void append(std::string_view text);

  // Hands all that was appended, in chunks, to `take`.
  void read_all(const std::function<void(std::string_view)> &take);

  // Part of what was appended.
  std::string read(size_t offset, size_t size);

 private:
  std::unique_ptr<std::FILE, int (*)(std::FILE *)> file_{nullptr, &std::fclose};
};

}  // namespace yfw
