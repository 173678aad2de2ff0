#include "document_internal.hpp"
#include "yfw/internal/byte_search.hpp"
#include "yfw/internal/text.hpp"

namespace yfw {

namespace {

// Walks the markup of a text once, from one character of meaning to the next.
class markup {
 public:
  markup(const document::parts &parts, size_t begin)
      : parts_(parts), text_(parts.text), marks_(text_), begin_(begin), at_(begin) {}

  // Whether there is what can stand inside a text.
  bool check() {
    while ((at_ = marks_.next(at_)) < text_.size()) {
      if (text_[at_] == '&') {
        check_reference();
      } else if (is_at("<!") || is_at("<?")) {
        check_special();
      } else if (text_[at_] == '<') {
        check_tag();
      } else if (is_at("]]>")) {
        parts_.fail(at_, "']]>' is not allowed outside a CDATA section");
      } else {
        ++at_;
      }
    }
    return can_split_text_;
  }

 private:
  bool is_at(std::string_view word) const {
    return text_.substr(at_).starts_with(word);
  }

  // Moves behind the next `end`, which closes the construct that begins here.
  void skip(size_t opening, std::string_view end, const char *what) {
    can_split_text_ = can_split_text_ || at_ != begin_;  // there the declaration stands
    const size_t found = text_.find(end, at_ + opening);
    if (found == std::string_view::npos) {
      parts_.fail(at_, std::string(what) + " is not closed by '" + std::string(end) + "'");
    }
    at_ = found + end.size();
  }

  // What is neither text nor a tag.
  void check_special() {
    if (is_at("<!--")) {
      const size_t start = at_;
      skip(4, "--", "comment");
      if (at_ == text_.size() || text_[at_] != '>') {
        parts_.fail(start, "comment holds '--' or is not closed by '-->'");
      }
      ++at_;
    } else if (is_at("<![CDATA[")) {
      skip(9, "]]>", "CDATA section");
    } else if (is_at("<?")) {
      skip(2, "?>", "processing instruction");
    } else {
      parts_.fail(at_, "document types and entity declarations are not allowed (RFC 6241, section 3)");
    }
  }

  void check_tag() {
    const size_t start = at_++;
    while ((at_ = marks_.next(at_)) < text_.size()) {
      const char found = text_[at_++];
      if (found == '>') {
        return;
      }
      if (found == '<') {
        break;
      }
      if (found == '"' || found == '\'') {
        check_attribute_value(found);
      }
    }
    parts_.fail(start, "tag is not closed by '>'");
  }

  void check_attribute_value(char quote) {
    const size_t start = at_ - 1;
    const auto is_stop = [&](const auto &bytes) { return bytes == quote || bytes == '<' || bytes == '&'; };
    while ((at_ = find_byte_if(text_, at_, is_stop)) < text_.size()) {
      if (text_[at_] == '&') {
        check_reference();
      } else if (text_[at_++] == quote) {
        return;
      } else {
        break;
      }
    }
    parts_.fail(start, "attribute value holds '<' or is not closed by " + std::string(quote == '"' ? "'\"'" : "\"'\""));
  }

  void check_reference() {
    constexpr size_t longest = 12;
    const size_t end = text_.substr(at_, longest).find(';');
    const std::string_view name = end == std::string_view::npos ? "" : text_.substr(at_ + 1, end - 1);
    if (name.starts_with('#') ? !is_character(name.substr(1)) : !is_predefined(name)) {
      const std::string_view shown = name.empty() ? std::string_view("&") : text_.substr(at_, end + 1);
      parts_.fail(at_, in_quotes(shown) +
                           " is not a reference to a character that YANG allows, nor one of &lt; &gt; &amp; "
                           "&quot; &apos;");
    }
    at_ += end + 1;
  }

  static bool is_predefined(std::string_view name) {
    return name == "lt" || name == "gt" || name == "amp" || name == "quot" || name == "apos";
  }

  // The digits of a character reference; their number is bounded, so that the sum cannot overflow.
  static bool is_character(std::string_view digits) {
    const bool is_hex = digits.starts_with('x');
    constexpr std::string_view all = "0123456789abcdef0123456789ABCDEF";
    uint32_t code_point = 0;
    digits.remove_prefix(is_hex ? 1 : 0);
    if (digits.empty() || digits.size() > 8) {
      return false;
    }
    for (const char c : digits) {
      const size_t value = all.find(c);
      if (value == std::string_view::npos || (!is_hex && value > 9)) {
        return false;
      }
      code_point = code_point * (is_hex ? 16 : 10) + static_cast<uint32_t>(value % 16);
    }
    return is_yang_char(code_point);
  }

  const document::parts &parts_;
  std::string_view text_;
  byte_marks<'<', '>', '&', ']', '"', '\''> marks_;
  const size_t begin_;
  size_t at_;
  bool can_split_text_ = false;
};

}  // namespace

bool check_markup(const document::parts &parts, size_t begin) {
  return markup(parts, begin).check();
}

}  // namespace yfw
