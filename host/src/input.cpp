#include "input.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <utility>

#include "yfw/error.hpp"

namespace ymap {
namespace {

[[noreturn]] void fail(const std::string &file, const char *what) {
  throw yfw::error(yfw::place{display_name(file), 0, {}}, std::string(what) + ": " + std::strerror(errno));
}

std::string read_stream(std::FILE *stream, const std::string &file) {
  std::string text;
  char chunk[65536];
  for (size_t count = 0; (count = std::fread(chunk, 1, sizeof chunk, stream)) > 0;) {
    text.append(chunk, count);
  }
  if (std::ferror(stream) != 0) {
    fail(file, "cannot be read");
  }
  return text;
}

}  // namespace

std::string display_name(const std::string &file) {
  return file == "-" ? "standard input" : file;
}

std::string read_text(const std::string &file) {
  if (file == "-") {
    return read_stream(stdin, file);
  }
  const std::unique_ptr<std::FILE, int (*)(std::FILE *)> stream(std::fopen(file.c_str(), "rb"), &std::fclose);
  if (stream == nullptr) {
    fail(file, "cannot be opened");
  }
  return read_stream(stream.get(), file);
}

text_file::text_file(std::string name, yfw::progress_report report)
    : name_(std::move(name)),
      descriptor_(name_ == "-" ? STDIN_FILENO : ::open(name_.c_str(), O_RDONLY | O_CLOEXEC)),
      report_(std::move(report)) {
  if (descriptor_ < 0) {
    fail(name_, "cannot be opened");
  }
  begin_ = ::lseek(descriptor_, 0, SEEK_CUR);
  struct stat status {};
  if (begin_ >= 0 && ::fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > begin_) {
    size_ = static_cast<size_t>(status.st_size - begin_);
  }
}

text_file::~text_file() {
  if (descriptor_ != STDIN_FILENO) {
    ::close(descriptor_);
  }
}

size_t text_file::read(std::span<char> room) {
  ssize_t count = 0;
  do {
    count = ::read(descriptor_, room.data(), room.size());
  } while (count < 0 && errno == EINTR);
  if (count < 0) {
    fail(name_, "cannot be read");
  }
  at_ += static_cast<size_t>(count);
  if (report_) {
    report_(at_, size_);
  }
  return static_cast<size_t>(count);
}

bool text_file::seek(size_t offset) {
  const off_t place = begin_ + static_cast<off_t>(offset);
  at_ = offset;
  return begin_ >= 0 && ::lseek(descriptor_, place, SEEK_SET) == place;
}

std::string escaped(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string result;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\\') {
      result += "\\\\";
    } else if (c == '\t' || c == '\n' || c == '\r') {
      result += c == '\t' ? "\\t" : c == '\n' ? "\\n" : "\\r";
    } else if (byte < 0x20 || byte == 0x7f) {
      result += {'\\', 'x', digits[byte / 16], digits[byte % 16]};
    } else {
      result += c;
    }
  }
  return result;
}

void write_result(const std::string &text, const std::string &done) {
  std::cout.write(text.data(), static_cast<std::streamsize>(text.size())).flush();
  if (!std::cout) {
    throw output_error("standard output cannot be written" + (done.empty() ? "" : "; " + done));
  }
}

void write_notes(const std::vector<yfw::note> &notes) {
  for (const yfw::note &each : notes) {
    std::cerr << "ymap: warning: " << to_string(each) << '\n';
  }
}

}  // namespace ymap
