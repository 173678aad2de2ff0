#include "yfw/internal/text.hpp"

#include <algorithm>

#include "yfw/internal/byte_search.hpp"

namespace yfw {

bool is_yang_char(uint32_t code_point) {
  if (code_point < 0x20) {
    return code_point == '\t' || code_point == '\n' || code_point == '\r';
  }
  const bool is_surrogate = code_point >= 0xd800 && code_point <= 0xdfff;
  const bool is_noncharacter = (code_point >= 0xfdd0 && code_point <= 0xfdef) || (code_point & 0xfffe) == 0xfffe;
  return code_point <= 0x10ffff && !is_surrogate && !is_noncharacter;
}

namespace {

struct character {
  uint32_t code_point;
  size_t bytes;  // 0: not UTF-8
};

// The character of two or more bytes at the start of `text`.
character decode(std::string_view text) {
  const auto byte = [&](size_t i) { return static_cast<uint32_t>(static_cast<unsigned char>(text[i])); };
  const uint32_t first = byte(0);
  const size_t bytes = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
  if (first < 0xc2 || first > 0xf4 || text.size() < bytes) {
    return {0, 0};
  }
  uint32_t code_point = first & (0xffU >> (bytes + 1));
  for (size_t i = 1; i < bytes; ++i) {
    if ((byte(i) & 0xc0U) != 0x80U) {
      return {0, 0};
    }
    code_point = code_point << 6U | (byte(i) & 0x3fU);
  }
  const uint32_t least = bytes == 2 ? 0x80 : bytes == 3 ? 0x800 : 0x10000;
  const bool is_surrogate = code_point >= 0xd800 && code_point <= 0xdfff;
  const bool is_good = code_point >= least && code_point <= 0x10ffff && !is_surrogate;
  return {code_point, is_good ? bytes : 0};
}

}  // namespace

text_fault first_fault(std::string_view text, std::vector<uint32_t> *newlines) {
  // The others are printable ASCII characters and DEL.
  const auto is_special = [](const auto &bytes) { return bytes < ' '; };
  for (size_t at = 0; (at = find_byte_if(text, at, is_special)) < text.size();) {
    const auto byte = static_cast<unsigned char>(text[at]);
    character next{byte, 1};
    if (byte >= 0x80) {
      next = decode(text.substr(at));
    } else if (byte == '\n' && newlines != nullptr) {
      newlines->push_back(static_cast<uint32_t>(at));
    }
    if (next.bytes == 0 || !is_yang_char(next.code_point)) {
      return {next.bytes == 0 ? bad_text::not_utf8 : bad_text::not_yang, at};
    }
    at += next.bytes;
  }
  return {};
}

std::string_view fault_words(bad_text kind) {
  return kind == bad_text::not_utf8 ? "is not UTF-8" : "has a character that YANG does not allow";
}

bool is_blank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool is_blank(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return is_blank(c); });
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && is_blank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && is_blank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

std::string plain_words(std::string_view message) {
  std::string result(message);
  while (!result.empty() && (result.back() == '.' || is_blank(result.back()))) {
    result.pop_back();
  }
  if (!result.empty() && result.front() >= 'A' && result.front() <= 'Z') {
    result.front() = static_cast<char>(result.front() - 'A' + 'a');
  }
  return result;
}

}  // namespace yfw
