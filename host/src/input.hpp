// Text in and out of the program.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

#include "yfw/error.hpp"
#include "yfw/progress.hpp"
#include "yfw/reply_stream.hpp"

namespace ymap {

// The whole of a file, or of standard input for "-". Throws `yfw::error` when it cannot be read.
std::string read_text(const std::string &file);

// A file, or standard input for "-", that is read in pieces, from where it stands.
class text_file : public yfw::text_source {
 public:
  // `report` is told how many bytes were read, and of how many when that is known. Throws `yfw::error` when the file
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
  off_t begin_;  // negative: it has no places to go back to
  yfw::progress_report report_;
  size_t at_ = 0;
  size_t size_ = 0;  // 0: not known
};

// How messages call it.
std::string display_name(const std::string &file);

// `text` with control characters as \t, \n, \r or \xHH and a backslash as two, so that it stays within its line and
// column, and nothing else reads the same. For output that is told by lines; XML and JSON have their own way.
std::string escaped(std::string_view text);

// Thrown when standard output cannot be written, so that nothing more can be told there.
class output_error : public yfw::error {
 public:
  using yfw::error::error;
};

// Writes a result to standard output. Throws `output_error` when that fails, which then tells what was `done` already.
void write_result(const std::string &text, const std::string &done = {});

// Writes one line a note to standard error.
void write_notes(const std::vector<yfw::note> &notes);

}  // namespace ymap
