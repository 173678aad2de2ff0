#include <algorithm>
#include <array>

#include "yfw/internal/byte_search.hpp"
#include "yfw/internal/document_splitter.hpp"
#include "yfw/internal/text.hpp"

namespace yfw {
namespace {

class json_splitter : public document_splitter {
 public:
  explicit json_splitter(std::vector<std::string> lists) : lists_(std::move(lists)) {}

  data_format format() const override {
    return data_format::json;
  }

  std::optional<split_point> next_split(std::string_view window, size_t least) override {
    window_ = window;
    while (is_good_ && at_ < window_.size()) {
      if (depth_in_entry_ > 0) {
        pass_entry();
        if (depth_in_entry_ > 0) {
          return std::nullopt;
        }
      } else if (window_[at_] == '{' && at_ >= least && comma_ != npos && is_in_list()) {
        return split_point{comma_, at_};
      } else if (!pass_token()) {
        return std::nullopt;
      }
    }
    return std::nullopt;
  }

  void drop(size_t bytes) override {
    at_ -= bytes;
    comma_ = npos;
  }

  std::string opening() const override {
    std::string text;
    for (const level &each : open_) {
      text += each.name + (each.name.empty() ? "" : ":") + each.bracket;
    }
    return text;
  }

  std::string closing() const override {
    std::string text;
    for (auto each = open_.rbegin(); each != open_.rend(); ++each) {
      text += each->bracket == '{' ? '}' : ']';
    }
    return text;
  }

  bool is_good() const override {
    return is_good_;
  }

 private:
  struct level {
    char bracket;
    std::string name;                // with its quotes: of the member whose value this is
    size_t outer_path;               // length of `path_` outside
    std::vector<std::string> names;  // of an object's members so far
  };

  bool is_in_list() const {
    return !open_.empty() && open_.back().bracket == '[' && std::ranges::find(lists_, path_) != lists_.end();
  }

  // Moves behind the token here; false, without moving, when it does not end in the window.
  bool pass_token() {
    if (!is_blank(window_[at_])) {
      is_good_ = is_good_ && (window_[at_] != ',' || comma_ == npos);
      comma_ = npos;
    }
    switch (window_[at_]) {
      case '"':
        return pass_string();
      case '{':
        if (is_in_list()) {
          depth_in_entry_ = 1;
          break;
        }
        [[fallthrough]];
      case '[':
        open();
        break;
      case '}':
      case ']':
        close();
        break;
      case ',':
        comma_ = at_;
        name_.clear();
        break;
      default:
        break;
    }
    ++at_;
    return true;
  }

  void open() {
    const size_t outer_path = path_.size();
    if (!name_.empty()) {
      add_plain_step(path_, std::string_view(name_).substr(1, name_.size() - 2));
    }
    open_.push_back({window_[at_], std::move(name_), outer_path, {}});
    name_.clear();
  }

  void close() {
    name_.clear();
    if (open_.empty()) {
      is_good_ = false;
      return;
    }
    path_.resize(open_.back().outer_path);
    open_.pop_back();
  }

  // The first string of a member is its name. A reader of the whole refuses a name that comes twice.
  bool pass_string() {
    const size_t end = string_end(at_);
    if (end == npos) {
      return false;
    }
    if (name_.empty() && !open_.empty() && open_.back().bracket == '{') {
      name_ = window_.substr(at_, end - at_);
      std::vector<std::string> &names = open_.back().names;
      is_good_ = name_.find('\\') == std::string::npos && std::ranges::find(names, name_) == names.end();
      names.push_back(name_);
    }
    at_ = end;
    return true;
  }

  // Behind the closing quote of the string that begins at `begin`.
  size_t string_end(size_t begin) const {
    size_t end = find_byte<'"'>(window_, begin + 1);
    while (end < window_.size() && is_escaped(end, begin)) {
      end = find_byte<'"'>(window_, end + 1);
    }
    return end == window_.size() ? npos : end + 1;
  }

  bool is_escaped(size_t quote, size_t begin) const {
    size_t first = quote;
    while (first > begin + 1 && window_[first - 1] == '\\') {
      --first;
    }
    return (quote - first) % 2 == 1;
  }

  // Goes on to the end of the entry, or of the window.
  void pass_entry() {
    while (depth_in_entry_ > 0 && (at_ = find_byte<'"', '{', '}', '[', ']'>(window_, at_)) < window_.size()) {
      const char c = window_[at_];
      if (c == '"') {
        const size_t end = string_end(at_);
        if (end == npos) {
          return;
        }
        at_ = end;
        continue;
      }
      const bool is_opened = c == '{' || c == '[';
      depth_in_entry_ = is_opened ? depth_in_entry_ + 1 : depth_in_entry_ - 1;
      ++at_;
    }
  }

  std::vector<std::string> lists_;
  std::string_view window_;
  size_t at_ = 0;
  size_t comma_ = npos;  // the one before what is here
  size_t depth_in_entry_ = 0;
  std::vector<level> open_;  // outside entries
  std::string name_;         // of the member here, with its quotes
  std::string path_;         // of the innermost open level
  bool is_good_ = true;
};

}  // namespace

std::unique_ptr<document_splitter> make_json_splitter(std::vector<std::string> lists) {
  return std::make_unique<json_splitter>(std::move(lists));
}

void add_plain_step(std::string &path, std::string_view name) {
  const std::string_view plain = name.substr(name.find(':') + 1);
  const bool is_envelope = path.empty() && (plain == "rpc-reply" || plain == "data");
  if (!is_envelope) {
    path.append(1, '/').append(plain);
  }
}

std::unique_ptr<document_splitter> make_splitter(std::string_view begin, std::vector<std::string> lists) {
  constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";
  begin.remove_prefix(begin.starts_with(byte_order_mark) ? byte_order_mark.size() : 0);
  const size_t first = begin.find_first_not_of(" \t\r\n");
  if (first == npos || (begin[first] != '<' && begin[first] != '{')) {
    return nullptr;
  }
  return begin[first] == '<' ? make_xml_splitter(std::move(lists)) : make_json_splitter(std::move(lists));
}

}  // namespace yfw
