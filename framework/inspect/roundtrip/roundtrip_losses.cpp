// The file of known losses: a line each of law, path, value and reason.
#include <algorithm>

#include "yfw/error.hpp"
#include "yfw/roundtrip.hpp"

namespace yfw {
namespace {

constexpr std::string_view blanks = " \t\r";

// Takes the next word off `line`; one in single quotes may hold blanks.
std::string_view take_word(std::string_view &line) {
  line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
  const size_t closing = line.starts_with('\'') ? line.find('\'', 1) : line.npos;
  const bool is_quoted = closing != line.npos;
  const std::string_view word = is_quoted ? line.substr(1, closing - 1) : line.substr(0, line.find_first_of(blanks));
  line.remove_prefix(is_quoted ? closing + 1 : word.size());
  return word;
}

law law_named(std::string_view text, const place &where) {
  std::string known;
  for (const law each : all_laws) {
    if (to_string(each) == text) {
      return each;
    }
    known += (known.empty() ? "'" : ", '") + std::string(to_string(each)) + "'";
  }
  throw error(where, in_quotes(text) + " is not a law, which are " + known);
}

known_loss read_line(std::string_view line, const place &where) {
  const law which = law_named(take_word(line), where);
  known_loss loss{which, std::string(take_word(line)), std::string(take_word(line)), {}, where.line};
  if (!loss.path.starts_with('/')) {
    throw error(where, in_quotes(loss.path) + " is not a path, which begins with '/'");
  }
  line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
  loss.reason = line.substr(0, line.find_last_not_of(blanks) + 1);
  if (loss.reason.empty()) {
    throw error(where, "has no reason; a line is: law path value reason");
  }
  return loss;
}

}  // namespace

bool known_loss::covers(const broken_law &loss) const {
  return which == loss.which && path == loss.path && (value == "*" || value == loss.value);
}

std::vector<known_loss> read_known_losses(std::string_view text, const std::string &file) {
  std::vector<known_loss> losses;
  unsigned number = 0;
  while (!text.empty()) {
    ++number;
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const size_t first = line.find_first_not_of(blanks);
    if (first != line.npos && line[first] != '#') {
      losses.push_back(read_line(line, {file, number, {}}));
    }
  }
  return losses;
}

}  // namespace yfw
