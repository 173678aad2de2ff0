// The text of a reply, cut into pieces that are documents of their own.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "document_cutter.hpp"
#include "spool.hpp"
#include "yfw/reply_stream.hpp"

namespace yfw {

struct piece {
  std::string text;
  unsigned first_line;
  bool is_whole;  // the text has no other piece
};

class piece_source {
 public:
  // Cuts before entries of `lists`, at least `least` bytes after the last cut.
  piece_source(text_source &text, std::vector<std::string> lists, size_t least);

  // None after the last one.
  std::optional<piece> next();

  // The whole text, whatever of it was given out already. Ends the pieces.
  std::string whole();

  // See `document_cutter::is_good`.
  bool is_good() const {
    return cutter_ == nullptr || cutter_->is_good();
  }

  // Known after the first piece.
  data_format format() const {
    return cutter_ == nullptr ? data_format::xml : cutter_->format();
  }

 private:
  piece cut_off(const cut &at);
  bool read_more();

  text_source &text_;
  std::vector<std::string> lists_;
  size_t least_;
  bool can_rewind_;
  spool kept_;  // what was read, once there is a cut, of a text that cannot be rewound

  std::string window_;  // read and not given out
  std::string opening_;
  unsigned first_line_ = 1;
  bool is_cut_ = false;
  bool is_at_end_ = false;
  std::unique_ptr<document_cutter> cutter_;
};

}  // namespace yfw
