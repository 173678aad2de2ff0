#include "generate.hpp"

#include "model.hpp"
#include "wrap.hpp"
#include "writers.hpp"

#include <filesystem>
#include <fstream>
#include <utility>

namespace ymapgen {
namespace {

void write_file(const std::string &file, const std::string &text) {
  std::ofstream output(file, std::ios::binary | std::ios::trunc);
  output << text;
  output.close();
  if (!output) {
    throw error("cannot write '" + file + "'");
  }
}

}  // namespace

std::vector<std::string> generate(const job &what) {
  const std::filesystem::path sources(what.source_folder);
  const std::filesystem::path headers(what.header_folder);
  std::vector<std::pair<std::string, std::string>> texts;
  for (const std::string &table : what.tables) {
    const model source = build_model(read_table(table), what.yang_folders);
    texts.emplace_back((headers / (source.stem + ".h")).string(), header_text(source));
    texts.emplace_back((sources / (source.stem + "_auto.cpp")).string(), auto_text(source));
    texts.emplace_back((sources / (source.stem + "_parser.cpp")).string(), parser_text(source));
  }
  std::vector<std::string> files;
  for (const auto &[file, text] : texts) {
    write_file(file, wrapped(text));
    files.push_back(file);
  }
  return files;
}

}  // namespace ymapgen
