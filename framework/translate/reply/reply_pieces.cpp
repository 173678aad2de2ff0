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

std::optional<piece> piece_source::next(size_t least) {
  if (is_at_end_) {
    return std::nullopt;
  }
  for (;;) {
    const auto found = cutter_ != nullptr ? cutter_->next_cut(window(), least) : std::nullopt;
    if (found) {
      return cut_off(*found);
    }
    if (!read_more()) {
      is_at_end_ = true;
      const size_t end = begin_ + window().size();
      return piece{begin_, end, end, first_line_, opening_, "", window()};
    }
  }
}

piece piece_source::cut_off(const cut &at) {
  if (begin_ == 0) {
    keep(window());
  }
  piece result{begin_,
               begin_ + at.end,
               begin_ + at.next,
               first_line_,
               std::move(opening_),
               cutter_->closing(),
               window().substr(0, at.end)};
  first_line_ += count_lines(window().substr(0, at.next));
  opening_ = cutter_->opening();
  cutter_->drop(at.next);
  taken_ += at.next;
  begin_ += at.next;
  return result;
}

void piece_source::keep(std::string_view text) {
  if (!can_seek_ && !is_from_kept_) {
    kept_.append(text);
    kept_bytes_ += text.size();
  }
}

// Asks for as much again as there is, so that what spans many readings is not looked at as many times.
bool piece_source::read_more() {
  constexpr size_t block_bytes = 262'144;
  buffer_.erase(0, taken_);
  taken_ = 0;
  const size_t old = buffer_.size();
  if (old > read_limits().bytes) {
    throw error("a piece of the text is larger than " + std::to_string(read_limits().bytes) + " bytes");
  }
  size_t room = std::max(block_bytes, old);
  if (is_from_kept_) {
    const size_t at = begin_ + old;
    room = std::min(room, kept_bytes_ - at);
    buffer_ += kept_.read(at, room);
  } else {
    buffer_.resize(old + room);
    room = fill(std::span(buffer_).subspan(old));
    buffer_.resize(old + room);
    if (begin_ > 0) {
      keep(std::string_view(buffer_).substr(old));
    }
  }
  if (cutter_ == nullptr) {
    cutter_ = make_cutter(window(), lists_);
  }
  return room != 0;
}

// Less than the room only at the end of the text: a pipe gives a little at a time.
size_t piece_source::fill(std::span<char> room) {
  size_t size = 0;
  for (size_t count = 1; size < room.size() && count != 0; size += count) {
    count = text_.read(room.subspan(size));
  }
  return size;
}

void piece_source::keep_rest() {
  if (begin_ == 0) {
    keep(window());
  }
  char block[65536];
  for (size_t count = 0; (count = text_.read(block)) > 0;) {
    keep({block, count});
  }
}

void piece_source::restart() {
  if (can_seek_) {
    text_.seek(0);
  } else if (!is_from_kept_) {
    keep_rest();
  }
  is_from_kept_ = !can_seek_;
  buffer_.clear();
  taken_ = 0;
  begin_ = 0;
  opening_.clear();
  first_line_ = 1;
  is_at_end_ = false;
  cutter_ = nullptr;
}

std::string piece_source::read(size_t begin, size_t end) {
  is_at_end_ = true;
  if (!can_seek_) {
    return kept_.read(begin, end - begin);
  }
  std::string text(end - begin, '\0');
  if (!text_.seek(begin) || fill(text) < text.size()) {
    throw error("the text is shorter than before");
  }
  return text;
}

std::string piece_source::whole() {
  if (begin_ > 0) {
    restart();
  }
  while (read_more()) {
  }
  is_at_end_ = true;
  return std::move(buffer_);
}

}  // namespace yfw
