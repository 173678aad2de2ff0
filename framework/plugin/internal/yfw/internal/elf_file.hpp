// The headers, sections and symbols of an ELF shared library, read without loading it: nothing in it runs. Every offset
// in the file is checked before it is used.
#pragma once

#include <elf.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace yfw {

struct elf_symbol {
  std::string name;
  std::string version;  // of an undefined one: "GLIBC_2.2.5"; "" when it has none
  uint64_t address = 0;
  uint64_t size = 0;
  bool is_defined = false;
  bool is_weak = false;
  bool is_function = false;
  size_t section = 0;  // index; meaningful when defined
};

struct elf_section {
  std::string name;
  uint32_t type = 0;
  uint64_t flags = 0;
  uint64_t address = 0;
  uint64_t offset = 0;
  uint64_t size = 0;
  uint32_t link = 0;
};

// "x86-64" or "AArch64", of a library's machine.
std::string_view machine_name(uint16_t machine);

class elf_file {
 public:
  // `bytes` is the content of `file`, which is for messages. Throws `error` for what is not a 64-bit little-endian
  // shared library for x86-64 or AArch64, and for a truncated or inconsistent one.
  elf_file(std::string bytes, std::string file);

  // Reads the file. Throws `error` when that is impossible, too.
  static elf_file read(const std::filesystem::path &file);

  uint16_t machine() const {
    return machine_;
  }
  const std::vector<elf_section> &sections() const {
    return sections_;
  }
  const elf_section *section(std::string_view name) const;

  // The version of the ABI that a plug-in was built for, from a section of its own; none without that section. When its
  // objects were built for several, one that is not this framework's.
  std::optional<std::string> abi_version() const;

  // Of a section, empty for one without bytes in the file.
  std::string_view content(const elf_section &section) const;

  // Names that other libraries see or that it wants of them. Of a data section: also what only it itself sees; none
  // when the library is stripped.
  std::vector<elf_symbol> dynamic_symbols() const;
  std::optional<std::vector<elf_symbol>> all_symbols() const;

  // The libraries that it wants loaded.
  std::vector<std::string> needed() const;

  // The names in its relocations.
  std::set<std::string> relocated_names() const;

  // The addresses in it that its own code calls, jumps to or takes, each with the places where it does so.
  std::multimap<uint64_t, uint64_t> references() const;

 private:
  template <typename record_t>
  record_t at(uint64_t offset) const;
  template <typename record_t>
  std::vector<record_t> table(const elf_section &section) const;
  std::string text_at(std::string_view texts, uint64_t offset) const;
  const elf_section &linked(const elf_section &section) const;
  void check_segments() const;
  const elf_section *of_type(uint32_t type) const;
  std::vector<elf_symbol> symbols(const elf_section &section) const;
  std::vector<std::string> version_names() const;
  [[noreturn]] void fail(const std::string &why) const;

  std::string bytes_;
  std::string file_;
  uint16_t machine_ = 0;
  std::vector<elf_section> sections_;
};

}  // namespace yfw
