#include "capture_text.hpp"

#include <algorithm>
#include <charconv>

namespace yfw {
namespace {

constexpr std::string_view hex_digits = "0123456789abcdef";

void append_escaped(std::string &to, char c) {
  const auto byte = static_cast<unsigned char>(c);
  if (c == '"' || c == '\\') {
    to.append(1, '\\').append(1, c);
  } else if (c == '\n') {
    to += "\\n";
  } else if (c == '\t') {
    to += "\\t";
  } else if (byte < 0x20 || byte == 0x7f) {
    to.append("\\x").append(1, hex_digits[byte >> 4U]).append(1, hex_digits[byte & 0xfU]);
  } else {
    to += c;
  }
}

int hex_value(char c) {
  const size_t at = hex_digits.find(c);
  return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

}  // namespace

std::string capture_literal(std::string_view text) {
  std::string literal = "\"";
  for (const char c : text) {
    append_escaped(literal, c);
  }
  return literal + '"';
}

std::string capture_literal(const char *text) {
  return text == nullptr ? "null" : capture_literal(std::string_view(text));
}

std::string capture_hex(uint32_t number) {
  char digits[8];
  const auto end = std::to_chars(digits, digits + sizeof digits, number, 16).ptr;
  return "0x" + std::string(digits, end);
}

capture_line::capture_line(std::string_view text, std::string file, unsigned number)
    : text_(text), file_(std::move(file)), number_(number) {
  std::string_view rest = text;
  while (!rest.empty()) {
    capture_word &word = words_.emplace_back();
    const size_t end = std::min(rest.find_first_of(" \""), rest.size());
    const std::string_view plain = rest.substr(0, end);
    const size_t equals = plain.find('=');
    word.name = equals == std::string_view::npos ? "" : plain.substr(0, equals);
    word.bare = equals == std::string_view::npos ? plain : plain.substr(equals + 1);
    rest.remove_prefix(end);
    if (rest.starts_with('"')) {
      word.text = quoted_text(rest);
      if (!word.bare.empty()) {
        fail("a quote inside the word " + in_quotes(word.bare));
      }
    }
    if (!rest.empty() && rest.front() != ' ') {
      fail("no space after a string");
    }
    rest.remove_prefix(rest.empty() ? 0 : 1);
  }
}

// Takes a quoted text off the front of `rest`.
std::string capture_line::quoted_text(std::string_view &rest) const {
  std::string result;
  for (size_t i = 1; i < rest.size(); ++i) {
    char c = rest[i];
    if (c == '"') {
      rest.remove_prefix(i + 1);
      return result;
    }
    if (c == '\\' && i + 1 < rest.size()) {
      c = rest[++i];
      if (c == 'x') {
        const int high = i + 2 < rest.size() ? hex_value(rest[i + 1]) : -1;
        const int low = i + 2 < rest.size() ? hex_value(rest[i + 2]) : -1;
        if (high < 0 || low < 0 || high + low == 0) {
          fail("'\\x' is not followed by two hexadecimal digits other than 00");
        }
        c = static_cast<char>(high * 16 + low);
        i += 2;
      } else if (c == 'n' || c == 't') {
        c = c == 'n' ? '\n' : '\t';
      } else if (c != '"' && c != '\\') {
        fail("unknown escape '\\" + std::string(1, c) + "'");
      }
    } else if (c == '\0') {
      fail("a zero byte in a string");
    }
    result += c;
  }
  fail("a string without a closing quote");
}

const std::string &capture_line::bare(size_t index) const {
  if (index >= words_.size() || !words_[index].name.empty() || words_[index].text) {
    fail("word " + std::to_string(index + 1) + " is missing");
  }
  return words_[index].bare;
}

const capture_word *capture_line::find(std::string_view name) const {
  const auto found = std::ranges::find(words_, name, &capture_word::name);
  return found == words_.end() ? nullptr : &*found;
}

const capture_word &capture_line::value(std::string_view name) const {
  const capture_word *found = find(name);
  if (found == nullptr) {
    fail("does not have " + in_quotes(std::string(name) + "="));
  }
  return *found;
}

std::optional<std::string> capture_line::text(std::string_view name) const {
  const capture_word &word = value(name);
  if (!word.text && word.bare != "null") {
    fail("invalid value " + in_quotes(word.bare) + ", expected null or a string in double quotes");
  }
  return word.text;
}

uint32_t capture_line::number(std::string_view name, uint32_t maximum) const {
  return number_of(value(name), maximum);
}

uint32_t capture_line::number_or_0(std::string_view name, uint32_t maximum) const {
  const capture_word *word = find(name);
  return word == nullptr ? 0 : number_of(*word, maximum);
}

uint32_t capture_line::number_of(const capture_word &word, uint32_t maximum) const {
  const bool is_hex = word.bare.starts_with("0x");
  const char *first = word.bare.data() + (is_hex ? 2 : 0);
  const char *last = word.bare.data() + word.bare.size();
  uint32_t result = 0;
  const auto [end, fault] = std::from_chars(first, last, result, is_hex ? 16 : 10);
  if (word.text || fault != std::errc() || end != last || result > maximum) {
    fail("invalid number " + in_quotes(word.text ? *word.text : word.bare) + ", expected 0.." +
         std::to_string(maximum));
  }
  return result;
}

void capture_line::fail(const std::string &why) const {
  throw error(place{file_, number_, {}}, why);
}

}  // namespace yfw
