// Characters: UTF-8 (RFC 3629) restricted to what YANG allows (RFC 7950, section 9.4).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace yfw {

// No control characters but tab, newline and carriage return, no surrogates, no noncharacters.
bool is_yang_char(uint32_t code_point);

enum class bad_text { none, not_utf8, not_yang };

struct text_fault {
  bad_text kind = bad_text::none;
  size_t offset = 0;  // of the first byte at fault
};

// The first fault of a text. The offsets of its newlines up to there are appended to `newlines`, if given.
text_fault first_fault(std::string_view text, std::vector<uint32_t> *newlines = nullptr);

// A fault in words: "is not UTF-8", "has a character that YANG does not allow".
std::string_view fault_words(bad_text kind);

bool is_blank(char c);
bool is_blank(std::string_view text);
std::string_view trimmed(std::string_view text);

// A message of a library in the framework's manner: no capital at the start, no full stop at the end.
std::string plain_words(std::string_view message);

}  // namespace yfw
