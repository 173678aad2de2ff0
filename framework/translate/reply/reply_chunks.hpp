// The text of a reply, cut into chunks that are documents of their own.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/internal/document_splitter.hpp"
#include "yfw/internal/temporary_file.hpp"
#include "yfw/reply_stream.hpp"

namespace yfw {

// A part of the text, and what makes it whole.
struct chunk {
  size_t begin;  // of the part, counted from the beginning of the text
  size_t end;
  size_t next;  // where the next chunk begins
  unsigned first_line;
  std::string opening;
  std::string closing;
  std::string_view part;  // in the source, until its next use

  bool is_whole() const {
    return begin == 0 && opening.empty() && closing.empty();
  }

  // The part as a document.
  std::string whole_text() const {
    std::string text;
    text.reserve(opening.size() + part.size() + closing.size());
    text.append(opening).append(part).append(closing);
    return text;
  }
};

class chunk_reader {
 public:
  // Cuts before entries of `lists`.
  chunk_reader(text_source &text, std::vector<std::string> lists)
      : text_(text), lists_(std::move(lists)), can_seek_(text.seek(0)) {}

  // The next chunk, of `least` bytes or more unless it is the last one; none after that.
  std::optional<chunk> next(size_t least);

  // Begins again at the first chunk.
  void restart();

  // Part of the text. Ends the chunks.
  std::string read(size_t begin, size_t end);

  // The whole text, whatever of it was given out already. Ends the chunks.
  std::string whole();

  // See `document_splitter::is_good`.
  bool is_good() const {
    return splitter_ == nullptr || splitter_->is_good();
  }

  // Known after the first chunk.
  data_format format() const {
    return splitter_ == nullptr ? data_format::xml : splitter_->format();
  }

 private:
  chunk split_off(const split_point &at);
  bool read_more(size_t least);
  size_t fill(std::span<char> room);
  void keep(std::string_view text);
  void keep_rest();
  std::string_view window() const {
    return {buffer_.data() + taken_, filled_ - taken_};
  }

  text_source &text_;
  std::vector<std::string> lists_;
  bool can_seek_;
  temporary_file kept_;  // what was read, once there is a cut, of a text that cannot be read twice
  size_t kept_bytes_ = 0;
  bool is_from_kept_ = false;

  std::string buffer_;  // larger than what it holds, so that it is not cleared before each reading
  size_t filled_ = 0;
  size_t taken_ = 0;  // of what it holds
  size_t begin_ = 0;  // of the window, in the text
  std::string opening_;
  unsigned first_line_ = 1;
  bool is_at_end_ = false;
  std::unique_ptr<document_splitter> splitter_;
};

}  // namespace yfw
