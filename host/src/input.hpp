// Text in and out of the program.
#pragma once

#include <string>
#include <vector>

namespace ymap {

// The whole of a file, or of standard input for "-". Throws `yfw::error` when it cannot be read.
std::string read_text(const std::string &file);

// How messages call it.
std::string display_name(const std::string &file);

// Writes a result to standard output. Throws `yfw::error` when that fails.
void write_result(const std::string &text);

// Writes one line a note to standard error.
void write_notes(const std::vector<std::string> &notes);

}  // namespace ymap
