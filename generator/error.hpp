// The generator's one error: a place and a text, thrown where it is found and reported once by main.
#pragma once

#include <stdexcept>
#include <string>

namespace ymapgen {

// A line of an input file, counted from 1.
struct place {
  std::string file;
  unsigned line = 0;
};

class error : public std::runtime_error {
 public:
  explicit error(const std::string &text) : std::runtime_error(text) {}
  error(const place &at, const std::string &text)
      : std::runtime_error(at.file + ":" + std::to_string(at.line) + ": " + text) {}
};

}  // namespace ymapgen
