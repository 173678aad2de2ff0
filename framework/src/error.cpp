#include "yfw/error.hpp"

#include <utility>

namespace yfw {

static std::string message(const place &where, const std::string &text) {
  std::string result;
  if (!where.file.empty()) {
    result += where.file + ':';
  }
  if (where.line != 0) {
    result += (where.file.empty() ? "line " : "") + std::to_string(where.line) + ':';
  }
  if (!where.path.empty()) {
    result += (result.empty() ? "" : " ") + where.path + ':';
  }
  return result.empty() ? text : result + ' ' + text;
}

error::error(const std::string &text) : std::runtime_error(text), text_(text) {}

error::error(place where, const std::string &text)
    : std::runtime_error(message(where, text)), where_(std::move(where)), text_(text) {}

std::string quoted(std::string_view text) {
  constexpr size_t longest = 80;
  std::string result = "'";
  size_t end = std::min(text.size(), longest);
  while (end < text.size() && end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0U) == 0x80U) {
    --end;  // not in the middle of a character
  }
  for (const char c : text.substr(0, end)) {
    result += static_cast<unsigned char>(c) < 0x20U ? '?' : c;
  }
  return result + (end < text.size() ? "...'" : "'");
}

}  // namespace yfw
