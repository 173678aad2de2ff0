// Runs a fuzz target on files and on the files of folders, once each, without libFuzzer.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "target.hpp"

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> files_of(const std::vector<std::string> &names) {
  std::vector<fs::path> files;
  for (const std::string &name : names) {
    if (fs::is_directory(name)) {
      std::copy(fs::directory_iterator(name), fs::directory_iterator(), std::back_inserter(files));
    } else {
      files.emplace_back(name);
    }
  }
  std::ranges::sort(files);
  return files;
}

bool run(const fs::path &name) {
  std::ifstream input(name, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(input), {}};
  if (!input) {
    std::cerr << name.string() << ": cannot be read\n";
    return false;
  }
  std::cerr << name.string() << '\n';  // the last one printed is the one that ended the process
  // A copy without the zero behind a string, so that a sanitizer sees a step over the end.
  const std::vector<uint8_t> bytes(text.begin(), text.end());
  return LLVMFuzzerTestOneInput(bytes.data(), bytes.size()) == 0;
}

}  // namespace

int main(int argc, char **argv) {
  const std::vector<fs::path> files = files_of({argv + 1, argv + argc});
  if (files.empty()) {
    std::cerr << "usage: " << argv[0] << " FILE|FOLDER...: no files given\n";
    return 2;
  }
  return std::ranges::all_of(files, run) ? 0 : 1;
}
