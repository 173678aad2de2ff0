#include "yfw/error.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "yfw/internal/path_steps.hpp"

namespace yfw {

std::string message_line(const place &where, std::string_view text) {
  std::string result;
  if (!where.file.empty()) {
    result += where.file + ':';
  }
  if (where.line != 0) {
    result += (where.file.empty() ? "line " : "") + std::to_string(where.line) + ':';
  }
  if (!where.path.empty()) {
    result += (result.empty() ? "" : " ") + one_line(where.path) + ':';
  }
  return result.empty() ? one_line(text) : result + ' ' + one_line(text);
}

error::error(const std::string &text) : std::runtime_error(one_line(text)), text_(text) {}

error::error(place where, const std::string &text)
    : std::runtime_error(message_line(where, text)), where_(std::move(where)), text_(text) {}

std::string_view to_string(error_tag tag) {
  static constexpr std::array<std::string_view, 10> words{
      "bad-element",       "data-exists",      "data-missing",     "invalid-value",
      "malformed-message", "missing-element",  "operation-failed", "operation-not-supported",
      "unknown-element",   "unknown-namespace"};
  return words.at(static_cast<size_t>(tag));
}

// The last name of a path: "price" of /library/book[title="War/Peace"]/price.
static std::string last_name(std::string_view path) {
  std::string_view step;
  while (!path.empty()) {
    step = next_step(path);
  }
  return std::string(step.substr(0, step.find('[')));
}

static bool names_element(error_tag tag) {
  return tag == error_tag::bad_element || tag == error_tag::missing_element || tag == error_tag::unknown_element ||
         tag == error_tag::unknown_namespace;
}

client_error::client_error(place where, const std::string &text, error_tag tag, std::string bad_element)
    : error(std::move(where), text), tag_(tag), bad_element_(std::move(bad_element)) {
  if (bad_element_.empty() && names_element(tag)) {
    bad_element_ = last_name(this->where().path);
  }
}

client_error::client_error(place where, rejected_value rejected)
    : client_error(std::move(where), to_string(rejected), error_tag::invalid_value) {
  rejected_ = std::make_shared<const rejected_value>(std::move(rejected));
}

static std::string to_string(rejected_value::kind fault) {
  return fault == rejected_value::kind::invalid ? "invalid value" : "unmapped value";
}

std::string rejected_value::without_value() const {
  return to_string(fault) + reason;
}

std::string to_string(const rejected_value &rejected) {
  return to_string(rejected.fault) + " " + in_quotes(rejected.value) + rejected.reason;
}

client_error client_error::at(place where) const {
  client_error moved(std::move(where), text(), tag_, bad_element_);
  moved.rejected_ = rejected_;
  return moved;
}

// The first place at or after `begin` that is not in the middle of a character.
static size_t character_at(std::string_view text, size_t begin) {
  while (begin < text.size() && (static_cast<unsigned char>(text[begin]) & 0xc0U) == 0x80U) {
    ++begin;
  }
  return begin;
}

static std::string without_controls(std::string_view text) {
  std::string result(text);
  for (char &c : result) {
    c = static_cast<unsigned char>(c) < 0x20U || c == '\x7f' ? '?' : c;
  }
  return result;
}

std::string in_quotes(std::string_view text) {
  constexpr size_t longest = 80;
  const size_t end = character_at(text, std::min(text.size(), longest));
  return "'" + without_controls(text.substr(0, end)) + (end < text.size() ? "...'" : "'");
}

std::string one_line(std::string_view text) {
  constexpr size_t half = 500;
  if (text.size() <= 2 * half) {
    return without_controls(text);
  }
  return without_controls(text.substr(0, character_at(text, half))) + "..." +
         without_controls(text.substr(character_at(text, text.size() - half)));
}

}  // namespace yfw
