#include "input.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>

#include "yfw/error.hpp"

namespace ymap {
namespace {

[[noreturn]] void refuse(const std::string &file, const char *what) {
  throw yfw::error(yfw::place{display_name(file), 0, {}}, std::string(what) + ": " + std::strerror(errno));
}

std::string read_stream(std::FILE *stream, const std::string &file) {
  std::string text;
  char chunk[65536];
  for (size_t count = 0; (count = std::fread(chunk, 1, sizeof chunk, stream)) > 0;) {
    text.append(chunk, count);
  }
  if (std::ferror(stream) != 0) {
    refuse(file, "cannot be read");
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
    refuse(file, "cannot be opened");
  }
  return read_stream(stream.get(), file);
}

void write_result(const std::string &text) {
  std::cout.write(text.data(), static_cast<std::streamsize>(text.size())).flush();
  if (!std::cout) {
    throw yfw::error("standard output cannot be written");
  }
}

void write_notes(const std::vector<std::string> &notes) {
  for (const std::string &note : notes) {
    std::cerr << "ymap: note: " << note << '\n';
  }
}

}  // namespace ymap
