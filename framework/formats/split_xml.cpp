#include <algorithm>
#include <set>

#include "yfw/internal/byte_search.hpp"
#include "yfw/internal/document_splitter.hpp"

namespace yfw {
namespace {

class xml_splitter : public document_splitter {
 public:
  explicit xml_splitter(std::vector<std::string> lists) : lists_(std::move(lists)) {}

  data_format format() const override {
    return data_format::xml;
  }

  std::optional<split_point> next_split(std::string_view window, size_t least) override {
    window_ = window;
    marks_ = byte_marks<'<', '>', '"', '\''>(window);
    while (is_good_ && to_next_angle()) {
      if (at_ >= least && begins_entry()) {
        return split_point{at_, at_};
      }
      if (!pass_construct()) {
        break;
      }
    }
    return std::nullopt;
  }

  void drop(size_t bytes) override {
    at_ -= bytes;
  }

  std::string opening() const override {
    std::string text;
    for (const open_tag &each : open_) {
      text += each.text;
    }
    std::ranges::replace(text, '\n', ' ');
    return text;
  }

  std::string closing() const override {
    std::string text;
    for (auto each = open_.rbegin(); each != open_.rend(); ++each) {
      text += "</" + std::string(each->name()) + '>';
    }
    return text;
  }

  bool is_good() const override {
    return is_good_;
  }

 private:
  struct open_tag {
    std::string text;   // "<name …>"
    size_t outer_path;  // length of `path_` outside

    std::string_view name() const {
      return std::string_view(text).substr(1, text.find_first_of(" \t\r\n/>") - 1);
    }
  };

  size_t next_mark(char wanted, size_t at) {
    at = marks_.next(at);
    while (at < window_.size() && window_[at] != wanted) {
      at = marks_.next(at + 1);
    }
    return at;
  }

  bool to_next_angle() {
    at_ = next_mark('<', at_);
    return at_ < window_.size();
  }

  // Moves behind what begins with the '<' here; false, without moving, when it does not end in the window.
  bool pass_construct() {
    if (at_ + 1 == window_.size()) {
      return false;
    }
    switch (window_[at_ + 1]) {
      case '/':
        return pass_end_tag();
      case '?':
        return move_behind(window_.find("?>", at_ + 2), 2);
      case '!':
        return pass_comment_or_text();
      default:
        return pass_start_tag();
    }
  }

  bool pass_comment_or_text() {
    constexpr size_t longest_opening = 9;
    const std::string_view begin = window_.substr(at_, longest_opening);
    if (begin.size() < longest_opening) {
      return false;
    }
    const bool is_comment = begin.starts_with("<!--");
    is_good_ = is_comment || begin == "<![CDATA[";
    const std::string_view end = is_comment ? "-->" : "]]>";
    return move_behind(window_.find(end, at_ + (is_comment ? 4 : longest_opening)), end.size());
  }

  bool move_behind(size_t found, size_t size) {
    at_ = found == npos ? at_ : found + size;
    return found != npos;
  }

  bool pass_end_tag() {
    const size_t end = next_mark('>', at_);
    if (end == window_.size()) {
      return false;
    }
    if (depth_in_entry_ > 0) {
      --depth_in_entry_;
    } else if (open_.empty()) {
      is_good_ = false;
    } else {
      path_.resize(open_.back().outer_path);
      open_.pop_back();
    }
    at_ = end + 1;
    return true;
  }

  bool pass_start_tag() {
    const size_t end = tag_end();
    if (end == npos) {
      return false;
    }
    const bool is_empty = window_[end - 1] == '/';
    if (depth_in_entry_ > 0) {
      depth_in_entry_ += is_empty ? 0 : 1;
    } else if (!is_empty && begins_entry()) {
      depth_in_entry_ = 1;
    } else if (!is_empty) {
      const size_t outer_path = path_.size();
      add_plain_step(path_, name_here());
      is_good_ = is_good_ && is_first_way_to_list();
      open_.push_back({std::string(window_.substr(at_, end + 1 - at_)), outer_path});
    }
    at_ = end + 1;
    return true;
  }

  // Where the '>' of the tag is, which attribute values may hold, too.
  size_t tag_end() {
    size_t at = marks_.next(at_ + 1);
    while (at < window_.size() && window_[at] != '>') {
      at = window_[at] == '<' ? at : window_.find(window_[at], at + 1);
      at = at == npos ? window_.size() : marks_.next(at + 1);
    }
    return at < window_.size() ? at : npos;
  }

  // Empty when the name does not end in the window.
  std::string_view name_here() const {
    const size_t end = window_.find_first_of(" \t\r\n/>", at_ + 1);
    return end == npos ? "" : window_.substr(at_ + 1, end - at_ - 1);
  }

  // Whether the tag here opens an entry of one of the lists.
  bool begins_entry() const {
    if (depth_in_entry_ > 0 || name_here().empty()) {
      return false;
    }
    std::string path = path_;
    add_plain_step(path, name_here());
    return std::ranges::find(lists_, path) != lists_.end();
  }

  // A reader of the whole refuses a container that comes twice.
  bool is_first_way_to_list() {
    const bool is_way =
        std::ranges::any_of(lists_, [&](const std::string &list) { return list.starts_with(path_ + '/'); });
    return path_.empty() || !is_way || ways_.insert(path_).second;
  }

  std::vector<std::string> lists_;
  std::set<std::string> ways_;  // paths of the containers around lists that were opened
  std::string_view window_;
  byte_marks<'<', '>', '"', '\''> marks_{window_};  // of the window
  size_t at_ = 0;
  size_t depth_in_entry_ = 0;
  std::vector<open_tag> open_;  // outside entries
  std::string path_;            // of the innermost of them
  bool is_good_ = true;
};

}  // namespace

std::unique_ptr<document_splitter> make_xml_splitter(std::vector<std::string> lists) {
  return std::make_unique<xml_splitter>(std::move(lists));
}

}  // namespace yfw
