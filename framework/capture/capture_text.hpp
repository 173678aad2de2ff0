// The words of a capture. A line holds words between single spaces; a word is bare, `#3.1`, or a named value,
// `tag="port-speed"`. Texts are quoted; `null` without quotes stands for none.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/error.hpp"

namespace yfw {

// The text between double quotes, with \" \\ \n \t and \xHH for what is not printable ASCII; null: null.
std::string capture_literal(const char *text);
std::string capture_literal(std::string_view text);

// 0x40
std::string capture_hex(uint32_t number);

struct capture_word {
  std::string name;                 // "" of a bare word
  std::string bare;                 // what is not quoted
  std::optional<std::string> text;  // what is quoted, its escapes resolved
};

// The words of one line, by position or by name. A missing word or one of another kind throws `error` with file and
// line.
class capture_line {
 public:
  capture_line(std::string_view text, std::string file, unsigned number);

  unsigned number() const {
    return number_;
  }
  const std::string &text() const {
    return text_;
  }
  size_t size() const {
    return words_.size();
  }
  const std::vector<capture_word> &words() const {
    return words_;
  }

  // The bare word at that place.
  const std::string &bare(size_t index) const;

  // The value of that name: of any kind, a text or null, a number in decimal or 0x….
  const capture_word &value(std::string_view name) const;
  const capture_word *find(std::string_view name) const;
  std::optional<std::string> text(std::string_view name) const;
  uint32_t number(std::string_view name, uint32_t maximum = UINT32_MAX) const;
  uint32_t number_or_0(std::string_view name, uint32_t maximum = UINT32_MAX) const;
  uint32_t number_of(const capture_word &word, uint32_t maximum = UINT32_MAX) const;

  [[noreturn]] void fail(const std::string &why) const;

 private:
  std::string quoted_text(std::string_view &rest) const;

  std::string text_;
  std::string file_;
  unsigned number_;
  std::vector<capture_word> words_;
};

}  // namespace yfw
