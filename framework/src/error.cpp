#include "yfw/error.hpp"

#include <array>
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

std::string_view word(error_tag tag) {
  static constexpr std::array<std::string_view, 10> words{
      "bad-element",       "data-exists",      "data-missing",     "invalid-value",
      "malformed-message", "missing-element",  "operation-failed", "operation-not-supported",
      "unknown-element",   "unknown-namespace"};
  return words.at(static_cast<size_t>(tag));
}

// The last name of a path: "price" of /library/book[title="War/Peace"]/price.
static std::string last_name(std::string_view path) {
  size_t begin = path.size();
  char quote = '\0';
  for (size_t i = 0; i < path.size(); ++i) {
    if (quote != '\0') {
      quote = path[i] == quote ? '\0' : quote;
    } else if (path[i] == '"' || path[i] == '\'') {
      quote = path[i];
    } else if (path[i] == '/') {
      begin = i + 1;
    }
  }
  path.remove_prefix(begin);
  return std::string(path.substr(0, path.find('[')));
}

static bool names_element(error_tag tag) {
  return tag == error_tag::bad_element || tag == error_tag::missing_element || tag == error_tag::unknown_element ||
         tag == error_tag::unknown_namespace;
}

rpc_error::rpc_error(place where, const std::string &text, error_tag tag, std::string bad_element)
    : error(std::move(where), text), tag_(tag), bad_element_(std::move(bad_element)) {
  if (bad_element_.empty() && names_element(tag)) {
    bad_element_ = last_name(this->where().path);
  }
}

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
