#include "reply_chunks.hpp"

#include <algorithm>
#include <utility>

#include "yfw/error.hpp"

namespace yfw {

static unsigned count_lines(std::string_view text) {
  unsigned count = 0;
  for (size_t at = 0; (at = text.find('\n', at)) != std::string_view::npos; ++at) {
    ++count;
  }
  return count;
}

std::optional<chunk> chunk_reader::next(size_t least) {
  if (is_at_end_) {
    return std::nullopt;
  }
  for (;;) {
    const auto found = splitter_ != nullptr ? splitter_->next_split(window(), least) : std::nullopt;
    if (found) {
      return split_off(*found);
    }
    if (!read_more(least)) {
      is_at_end_ = true;
      const size_t end = begin_ + window().size();
      return chunk{begin_, end, end, first_line_, opening_, "", window()};
    }
  }
}

chunk chunk_reader::split_off(const split_point &at) {
  if (begin_ == 0) {
    keep(window());
  }
  chunk result{begin_,
               begin_ + at.end,
               begin_ + at.next,
               first_line_,
               std::move(opening_),
               splitter_->closing(),
               window().substr(0, at.end)};
  first_line_ += count_lines(window().substr(0, at.next));
  opening_ = splitter_->opening();
  splitter_->drop(at.next);
  taken_ += at.next;
  begin_ += at.next;
  return result;
}

void chunk_reader::keep(std::string_view text) {
  if (!can_seek_ && !is_from_kept_) {
    kept_.append(text);
    kept_bytes_ += text.size();
  }
}

// Asks for a chunk and what may be left of an entry there, so that little is moved before the next reading; where that
// is not enough for as much again as there is, so that what spans many readings is not looked at as many times.
bool chunk_reader::read_more(size_t least) {
  constexpr size_t entry_bytes = 16'384;
  std::copy(buffer_.begin() + static_cast<ptrdiff_t>(taken_), buffer_.begin() + static_cast<ptrdiff_t>(filled_),
            buffer_.begin());
  filled_ -= std::exchange(taken_, 0);
  if (filled_ > read_limits().bytes) {
    throw error("a chunk of the text is larger than " + std::to_string(read_limits().bytes) + " bytes");
  }
  const size_t wanted = least + entry_bytes;
  size_t room = std::max(entry_bytes, filled_ < wanted ? wanted - filled_ : filled_);
  if (is_from_kept_) {
    room = std::min(room, kept_bytes_ - begin_ - filled_);
  }
  buffer_.resize(std::max(buffer_.size(), filled_ + room));
  const std::span<char> free = std::span(buffer_).subspan(filled_, room);
  if (is_from_kept_) {
    std::ranges::copy(kept_.read(begin_ + filled_, room), free.begin());
  } else {
    room = fill(free);
    if (begin_ > 0) {
      keep({free.data(), room});
    }
  }
  filled_ += room;
  if (splitter_ == nullptr) {
    splitter_ = make_splitter(window(), lists_);
  }
  return room != 0;
}

// Less than the room only at the end of the text: a pipe gives a little at a time.
size_t chunk_reader::fill(std::span<char> room) {
  size_t size = 0;
  for (size_t count = 1; size < room.size() && count != 0; size += count) {
    count = text_.read(room.subspan(size));
  }
  return size;
}

void chunk_reader::keep_rest() {
  if (begin_ == 0) {
    keep(window());
  }
  char block[65536];
  for (size_t count = 0; (count = text_.read(block)) > 0;) {
    keep({block, count});
  }
}

void chunk_reader::restart() {
  if (can_seek_) {
    text_.seek(0);
  } else if (!is_from_kept_) {
    keep_rest();
  }
  is_from_kept_ = !can_seek_;
  filled_ = 0;
  taken_ = 0;
  begin_ = 0;
  opening_.clear();
  first_line_ = 1;
  is_at_end_ = false;
  splitter_ = nullptr;
}

std::string chunk_reader::read(size_t begin, size_t end) {
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

std::string chunk_reader::whole() {
  if (begin_ > 0) {
    restart();
  }
  while (read_more(0)) {
  }
  is_at_end_ = true;
  buffer_.resize(filled_);
  return std::move(buffer_);
}

}  // namespace yfw
