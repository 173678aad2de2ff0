#include <algorithm>
#include <charconv>
#include <cstring>

#include "yfw/internal/coverage_values.hpp"

namespace yfw {
namespace {

// Returns one string that a regular expression probably matches, with the same choice everywhere: which branch, and how
// many repetitions beyond the minimum. Unknown syntax counts as literal; the caller checks the result.
class pattern_sampler {
 public:
  pattern_sampler(std::string_view pattern, size_t branch, size_t more, bool last_of_class)
      : pattern_(pattern), branch_(branch), more_(more), last_of_class_(last_of_class) {}

  std::string sample() {
    return alternatives(0);
  }

 private:
  static constexpr size_t deepest = 64;      // nested groups
  static constexpr size_t longest = 100000;  // bytes, so that nested repetitions end

  bool at_end() const {
    return at_ == pattern_.size();
  }
  char peek() const {
    return at_end() ? '\0' : pattern_[at_];
  }
  char next() {
    return at_end() ? '\0' : pattern_[at_++];
  }

  std::string alternatives(size_t depth) {
    std::vector<std::string> branches{sequence(depth)};
    while (peek() == '|') {
      next();
      branches.push_back(sequence(depth));
    }
    return branches[std::min(branch_, branches.size() - 1)];
  }

  std::string sequence(size_t depth) {
    std::string text;
    while (!at_end() && peek() != '|' && peek() != ')') {
      const std::string atom = one_atom(depth);
      for (size_t count = repetitions(); count > 0 && text.size() < longest; --count) {
        text += atom;
      }
    }
    return text;
  }

  std::string one_atom(size_t depth) {
    const char first = next();
    switch (first) {
      case '(': {
        std::string inside = depth < deepest ? alternatives(depth + 1) : "";
        next();  // the closing parenthesis
        return inside;
      }
      case '[':
        return {one_of_class()};
      case '\\':
        return {escaped()};
      case '.':
        return "a";
      default:
        return {first};
    }
  }

  char escaped() {
    const char letter = next();
    if (letter == 'p' || letter == 'P') {
      const size_t end = std::min(pattern_.find('}', at_), pattern_.size() - 1);
      const std::string_view category = pattern_.substr(at_, end - at_);
      at_ = end + 1;
      return category.starts_with("{N") ? '0' : 'a';
    }
    constexpr std::string_view letters = "dwicnrtsDWS";
    constexpr std::string_view meant = "0aaa\n\r\t a a";
    const size_t known = letters.find(letter);
    return known == letters.npos ? letter : meant[known];
  }

  // A character of a class: its first or last one, or one that an inverted class does not name.
  char one_of_class() {
    const bool is_inverted = peek() == '^';
    at_ += is_inverted ? 1 : 0;
    const size_t begin = at_;
    const char first = peek() == '\\' ? (next(), escaped()) : next();
    while (!at_end() && peek() != ']') {
      at_ += peek() == '\\' && at_ + 1 < pattern_.size() ? 2 : 1;
    }
    const std::string_view named = pattern_.substr(begin, at_ - begin);
    next();
    if (!is_inverted) {
      const bool is_plain_end = named.size() > 1 && named[named.size() - 2] != '\\';
      return last_of_class_ && is_plain_end ? named.back() : first;
    }
    constexpr std::string_view candidates = "a0A_. ";
    const size_t other = candidates.find_first_not_of(named);
    return other == candidates.npos ? 'x' : candidates[other];
  }

  size_t number() {
    size_t value = 0;
    const auto [end, code] = std::from_chars(pattern_.data() + at_, pattern_.data() + pattern_.size(), value);
    at_ = static_cast<size_t>(end - pattern_.data());
    return code == std::errc() ? std::min(value, longest) : 0;
  }

  // How often the atom before is to be repeated.
  size_t repetitions() {
    switch (peek()) {
      case '?':
        next();
        return std::min<size_t>(more_, 1);
      case '*':
        next();
        return more_;
      case '+':
        next();
        return 1 + more_;
      case '{':
        next();
        return counted();
      default:
        return 1;
    }
  }

  size_t counted() {
    const size_t least = number();
    size_t most = least;
    if (peek() == ',') {
      next();
      most = peek() == '}' ? longest : number();
    }
    next();  // the closing brace
    return std::min(least + more_, std::max(least, most));
  }

  std::string_view pattern_;
  size_t branch_;
  size_t more_;
  bool last_of_class_;
  size_t at_ = 0;
};

}  // namespace

std::vector<std::string> pattern_samples(std::string_view pattern, bool last_of_class) {
  std::vector<std::string> samples;
  for (const size_t more : {0U, 1U, 2U, 3U, 7U}) {
    for (const size_t branch : {0U, 1U, 2U, 3U}) {
      std::string sample = pattern_sampler(pattern, branch, more, last_of_class).sample();
      if (std::find(samples.begin(), samples.end(), sample) == samples.end()) {
        samples.push_back(std::move(sample));
      }
    }
  }
  std::stable_sort(samples.begin(), samples.end(), [](const auto &a, const auto &b) { return a.size() < b.size(); });
  return samples;
}

}  // namespace yfw
