// Text in and out of the program.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

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

// Writes a result to standard output. Throws `yfw::error` when that fails.
void write_result(const std::string &text);

// Writes one line a note to standard error.
void write_notes(const std::vector<std::string> &notes);

}  // namespace ymap
