#include "yfw/internal/temporary_file.hpp"

#include <cerrno>
#include <cstring>

#include "yfw/error.hpp"

namespace yfw {

[[noreturn]] static void fail(const char *what) {
  throw error(std::string("a temporary file cannot be ") + what + ": " + std::strerror(errno));
}

void temporary_file::append(std::string_view text) {
  if (file_ == nullptr) {
    file_.reset(std::tmpfile());
  }
  if (file_ == nullptr) {
    fail("made");
  }
  if (std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size()) {
    fail("written");
  }
}

void temporary_file::read_all(const std::function<void(std::string_view)> &take) {
  if (file_ == nullptr) {
    return;
  }
  if (std::fseek(file_.get(), 0, SEEK_SET) != 0) {
    fail("written");
  }
  char block[65536];
  for (size_t count = 0; (count = std::fread(block, 1, sizeof block, file_.get())) > 0;) {
    take({block, count});
  }
  if (std::ferror(file_.get()) != 0) {
    fail("read");
  }
}

std::string temporary_file::read(size_t offset, size_t size) {
  std::string text(size, '\0');
  if (std::fseek(file_.get(), static_cast<long>(offset), SEEK_SET) != 0 ||
      std::fread(text.data(), 1, size, file_.get()) != size) {
    fail("read");
  }
  return text;
}

}  // namespace yfw
