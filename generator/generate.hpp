#pragma once

#include "error.hpp"

#include <string>
#include <vector>

namespace ymapgen {

struct job {
  std::vector<std::string> yang_folders;
  std::string source_folder;  // receives the sources
  std::string header_folder;  // receives the headers
  std::vector<std::string> tables;
};

// Generates the header and the two sources of each table and returns the files written. Nothing is written when a table
// has an error. Throws `error`.
std::vector<std::string> generate(const job &what);

}  // namespace ymapgen
