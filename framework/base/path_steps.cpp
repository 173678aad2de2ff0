#include "yfw/internal/path_steps.hpp"

#include <algorithm>
#include <string>

#include "yfw/error.hpp"
#include "yfw/internal/text.hpp"

namespace yfw {

std::string_view next_step(std::string_view &path) {
  if (path.starts_with('/')) {
    path.remove_prefix(1);
  }
  size_t end = 0;
  char quote = '\0';
  for (; end < path.size() && (quote != '\0' || path[end] != '/'); ++end) {
    if (quote != '\0') {
      quote = path[end] == quote ? '\0' : quote;
    } else if (path[end] == '"' || path[end] == '\'') {
      quote = path[end];
    }
  }
  const std::string_view step = path.substr(0, end);
  path.remove_prefix(end);
  return step;
}

namespace {

// A node identifier, with letters of any script.
bool is_name(std::string_view text) {
  const auto is_name_byte = [](char c) {
    const bool is_letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
    return is_letter || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.';
  };
  return !text.empty() && text.front() != '.' && text.front() != '-' && std::ranges::all_of(text, is_name_byte);
}

class step_reader {
 public:
  explicit step_reader(std::string_view path) : path_(path) {}

  std::vector<written_step> read() const {
    if (!path_.starts_with('/')) {
      fail("it does not begin with '/'");
    }
    std::vector<written_step> steps;
    for (std::string_view rest = path_; !rest.empty();) {
      steps.push_back(step(next_step(rest)));
    }
    return steps;
  }

 private:
  [[noreturn]] void fail(const std::string &why) const {
    throw client_error({}, in_quotes(path_) + " is not a path of the form /list[key='value']/leaf: " + why,
                       error_tag::invalid_value);
  }

  written_step step(std::string_view text) const {
    const std::string_view full_name = text.substr(0, text.find('['));
    text.remove_prefix(full_name.size());
    const size_t colon = full_name.find(':');
    written_step result{colon == full_name.npos ? "" : full_name.substr(0, colon), full_name.substr(colon + 1), {}};
    if (full_name.empty()) {
      fail("a slash is not followed by a name");
    }
    if (!is_name(result.name) || (colon != full_name.npos && !is_name(result.prefix))) {
      fail(in_quotes(full_name) + " is not a name");
    }
    for (text = trimmed(text); !text.empty(); text = trimmed(text)) {
      result.keys.push_back(predicate(text));
    }
    return result;
  }

  // Removes a predicate, [key='value'], from the text.
  std::pair<std::string_view, std::string_view> predicate(std::string_view &text) const {
    const std::string_view all = text;
    require(text, '[', all);
    const std::string_view key = trimmed(text.substr(0, text.find_first_of("=]")));
    text.remove_prefix(std::min(text.find_first_of("=]"), text.size()));
    require(text, '=', all);
    text = trimmed(text);
    if (!text.starts_with('\'') && !text.starts_with('"')) {
      fail("the value in " + in_quotes(all) + " is not in quotes");
    }
    const size_t end = text.find(text.front(), 1);
    if (end == text.npos) {
      fail("a quote is not closed");
    }
    const std::string_view value = text.substr(1, end - 1);
    text = trimmed(text.substr(end + 1));
    require(text, ']', all);
    return {key, value};
  }

  void require(std::string_view &text, char c, std::string_view all) const {
    if (!text.starts_with(c)) {
      fail(in_quotes(all) + " is not [key='value']");
    }
    text.remove_prefix(1);
  }

  std::string_view path_;
};

}  // namespace

std::vector<written_step> read_steps(std::string_view path) {
  return step_reader(path).read();
}

}  // namespace yfw
