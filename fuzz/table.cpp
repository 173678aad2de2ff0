// A mapping table, read, joined with the modules and written as source.
#include "table.hpp"

#include <cstdint>
#include <sstream>

#include "error.hpp"
#include "model.hpp"
#include "schema.hpp"
#include "support/target.hpp"
#include "writers.hpp"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static ymapgen::schema modules({YMAP_FUZZ_TABLE_YANG});
  std::istringstream text(std::string(reinterpret_cast<const char *>(data), size));
  try {
    const ymapgen::model source = build_model(ymapgen::read_table(text, "input.map"), modules);
    (void)header_text(source);
    (void)auto_text(source);
    (void)parser_text(source);
  } catch (const ymapgen::error &) {
    return 0;
  }
  return 0;
}
