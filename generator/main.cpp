#include "generate.hpp"

#include <CLI/CLI.hpp>

#include <iostream>

namespace {

constexpr const char *description =
    "Writes the walkers and leaf mappings of a mapping plug-in.\n\n"
    "Each table names a YANG module and says, one line a node, what becomes of it. From both come a header and\n"
    "the sources ..._auto.cpp (leaf mappings) and ..._parser.cpp (walkers). Names of the files written go to\n"
    "standard output. When a table is wrong, nothing is written.";

constexpr const char *footer =
    "\nExample:\n"
    "  ymapgen --yang yang --out-src src --out-include include models/thermostat.map\n\n"
    "Exit codes: 0 done, 1 a table or module is wrong or a file cannot be written, 2 wrong command line.";

int run(int argc, char **argv) {
  CLI::App program(description, "ymapgen");
  program.footer(footer);
  ymapgen::job what;
  program.add_option("--yang", what.yang_folders, "folder with YANG modules, repeatable")
      ->required()
      ->expected(1)
      ->take_all()
      ->type_name("DIR");
  program.add_option("--out-src", what.source_folder, "folder for the sources")->required()->type_name("DIR");
  program.add_option("--out-include", what.header_folder, "folder for the headers")->required()->type_name("DIR");
  program.add_option("TABLE", what.tables, "mapping tables")->required();
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError &wrong) {
    if (wrong.get_exit_code() == 0) {
      return program.exit(wrong);
    }
    std::cerr << "ymapgen: " << wrong.what() << "; see ymapgen --help\n";
    return 2;
  }
  for (const std::string &file : ymapgen::generate(what)) {
    std::cout << file << '\n';
  }
  return 0;
}

}  // namespace

int main(int argc, char **argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception &wrong) {
    std::cerr << "ymapgen: " << wrong.what() << '\n';
    return 1;
  }
}
