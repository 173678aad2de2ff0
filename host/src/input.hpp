// Input and output of text.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

#include "yfw/error.hpp"
#include "yfw/progress.hpp"
#include "yfw/reply_stream.hpp"

namespace ymap {

// The content of a file, or of standard input for "-". Throws `yfw::error` when it cannot be read.
std::string read_text(const std::string &file);

// A file, or standard input for "-", that is read in parts, from its current position.
class text_file : public yfw::text_source {
 public:
  // `report` is called with the bytes read so far and the size, 0 when it is unknown. Throws `yfw::error` when the file
  // cannot be opened.
  explicit text_file(std::string name, yfw::progress_report report = {});
  ~text_file() override;
  text_file(const text_file &) = delete;
  text_file &operator=(const text_file &) = delete;

  size_t read(std::span<char> room) override;
  bool seek(size_t offset) override;

 private:
  std::string name_;
  int descriptor_;
  off_t begin_;  // negative: not seekable
  yfw::progress_report report_;
  size_t at_ = 0;
  size_t size_ = 0;  // 0: unknown
};

// The name of the file in messages.
std::string display_name(const std::string &file);

// `text` with control characters as \t, \n, \r or \xHH and a backslash as two, for output in lines and columns; XML and
// JSON have escapes of their own.
std::string escaped(std::string_view text);

// Thrown when standard output cannot be written.
class output_error : public yfw::error {
 public:
  using yfw::error::error;
};

// Writes a result to standard output. Throws `output_error` when that fails; its text includes what was `done` already.
void write_result(const std::string &text, const std::string &done = {});

// Writes a line per warning to standard error.
void write_notes(const std::vector<yfw::note> &notes);

}  // namespace ymap
