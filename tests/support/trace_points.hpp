// Long-form trace lines, taken apart.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace support {

struct trace_point {
  uint32_t number;
  std::string level;  // "TRC" or "ERR"
  std::string name;   // of the function
  int line;
  std::string context;  // as printed
  std::string text;
};

// Throws std::runtime_error for a line of another form.
std::vector<trace_point> parsed(const std::vector<std::string> &ring);

}  // namespace support
