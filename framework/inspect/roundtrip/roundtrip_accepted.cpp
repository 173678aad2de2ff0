// The file of accepted differences: a line each of property, path, value and reason.
#include <algorithm>

#include "yfw/error.hpp"
#include "yfw/roundtrip.hpp"

namespace yfw {
namespace {

constexpr std::string_view whitespace = " \t\r";

// Removes the next word from `line` and returns it; a word in single quotes may contain whitespace.
std::string_view next_word(std::string_view &line) {
  line.remove_prefix(std::min(line.find_first_not_of(whitespace), line.size()));
  const size_t closing = line.starts_with('\'') ? line.find('\'', 1) : line.npos;
  const bool is_quoted = closing != line.npos;
  const std::string_view word =
      is_quoted ? line.substr(1, closing - 1) : line.substr(0, line.find_first_of(whitespace));
  line.remove_prefix(is_quoted ? closing + 1 : word.size());
  return word;
}

property read_property(std::string_view text, const place &where) {
  std::string known;
  for (const property candidate : all_properties) {
    if (to_string(candidate) == text) {
      return candidate;
    }
    known += (known.empty() ? "'" : ", '") + std::string(to_string(candidate)) + "'";
  }
  throw error(where, "invalid property " + in_quotes(text) + ", expected " + known);
}

accepted_difference read_line(std::string_view line, const place &where) {
  const property which = read_property(next_word(line), where);
  accepted_difference difference{which, std::string(next_word(line)), std::string(next_word(line)), {}, where.line};
  if (!difference.path.starts_with('/')) {
    throw error(where, "invalid path " + in_quotes(difference.path) + ", expected one that begins with '/'");
  }
  line.remove_prefix(std::min(line.find_first_not_of(whitespace), line.size()));
  difference.reason = line.substr(0, line.find_last_not_of(whitespace) + 1);
  if (difference.reason.empty()) {
    throw error(where, "the reason is missing; a line is: property path value reason");
  }
  return difference;
}

}  // namespace

bool accepted_difference::covers(const roundtrip_difference &found) const {
  return which == found.which && path == found.path && (value == "*" || value == found.value);
}

std::vector<accepted_difference> read_accepted_differences(std::string_view text, const std::string &file) {
  std::vector<accepted_difference> differences;
  unsigned number = 0;
  while (!text.empty()) {
    ++number;
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const size_t first = line.find_first_not_of(whitespace);
    if (first != line.npos && line[first] != '#') {
      differences.push_back(read_line(line, {file, number, {}}));
    }
  }
  return differences;
}

}  // namespace yfw
