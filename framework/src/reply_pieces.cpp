#include "reply_pieces.hpp"

#include <algorithm>

#include "yfw/error.hpp"

namespace yfw {

static unsigned count_lines(std::string_view text) {
  unsigned count = 0;
  for (size_t at = 0; (at = text.find('\n', at)) != std::string_view::npos; ++at) {
    ++count;
  }
  return count;
}

piece_source::piece_source(text_source &text, std::vector<std::string> lists, size_t least)
    : text_(text), lists_(std::move(lists)), least_(least), can_rewind_(text.rewind()) {}

std::optional<piece> piece_source::next() {
  if (is_at_end_) {
    return std::nullopt;
  }
  for (;;) {
    const auto found = cutter_ != nullptr ? cutter_->next_cut(window_, least_) : std::nullopt;
    if (found) {
      return cut_off(*found);
    }
    if (!read_more()) {
      is_at_end_ = true;
      return piece{opening_ + window_, first_line_, !is_cut_};
    }
  }
}

piece piece_source::cut_off(const cut &at) {
  if (!is_cut_ && !can_rewind_) {
    kept_.append(window_);
  }
  is_cut_ = true;
  const std::string_view taken = std::string_view(window_).substr(0, at.end);
  piece result{opening_, first_line_, false};
  result.text.append(taken).append(cutter_->closing());
  first_line_ += count_lines(std::string_view(window_).substr(0, at.next));
  opening_ = cutter_->opening();
  cutter_->drop(at.next);
  window_.erase(0, at.next);
  return result;
}

// Asks for as much again as there is, so that what spans many readings is not looked at as many times.
bool piece_source::read_more() {
  const size_t old = window_.size();
  if (old > read_limits().bytes) {
    throw error("a piece of the text is larger than " + std::to_string(read_limits().bytes) + " bytes");
  }
  window_.resize(old + std::max(least_, old));
  const size_t count = text_.read(std::span(window_).subspan(old));
  window_.resize(old + count);
  if (is_cut_ && !can_rewind_) {
    kept_.append(std::string_view(window_).substr(old));
  }
  if (cutter_ == nullptr) {
    cutter_ = make_cutter(window_, lists_);
  }
  return count != 0;
}

std::string piece_source::whole() {
  std::string text;
  if (!is_cut_) {
    text = window_;
  } else if (can_rewind_) {
    text_.rewind();
  } else {
    kept_.read_all([&](std::string_view block) { text += block; });
  }
  is_cut_ = false;
  do {
    window_.clear();
  } while (read_more() && !text.append(window_).empty());
  is_at_end_ = true;
  return text;
}

}  // namespace yfw
