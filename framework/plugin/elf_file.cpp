#include "yfw/internal/elf_file.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include "yfw.h"
#include "yfw/error.hpp"

namespace yfw {

std::string_view machine_name(uint16_t machine) {
  return machine == EM_X86_64 ? "x86-64" : "AArch64";
}

elf_file elf_file::read(const std::filesystem::path &file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream || std::filesystem::is_directory(file)) {
    throw error(place{file.string()}, std::string("cannot be opened: ") + std::strerror(stream ? EISDIR : errno));
  }
  std::ostringstream bytes;
  bytes << stream.rdbuf();
  return elf_file(bytes.str(), file.string());
}

elf_file::elf_file(std::string bytes, std::string file) : bytes_(std::move(bytes)), file_(std::move(file)) {
  if (!bytes_.starts_with(ELFMAG)) {
    fail("is not an ELF file, such as a shared library");
  }
  const auto head = at<Elf64_Ehdr>(0);
  machine_ = head.e_machine;
  const bool is_known = machine_ == EM_X86_64 || machine_ == EM_AARCH64;
  if (head.e_ident[EI_CLASS] != ELFCLASS64 || head.e_ident[EI_DATA] != ELFDATA2LSB || !is_known) {
    fail("is not for x86-64 or AArch64");
  }
  if (head.e_type != ET_DYN) {
    fail("is not a shared library");
  }
  check_segments();
  if (head.e_shentsize != sizeof(Elf64_Shdr) || head.e_shnum == 0) {
    fail("has no section headers");
  }
  std::vector<Elf64_Shdr> headers;
  for (uint64_t i = 0; i < head.e_shnum; ++i) {
    headers.push_back(at<Elf64_Shdr>(head.e_shoff + i * sizeof(Elf64_Shdr)));
    const Elf64_Shdr &each = headers.back();
    sections_.push_back({"", each.sh_type, each.sh_flags, each.sh_addr, each.sh_offset, each.sh_size, each.sh_link});
  }
  if (head.e_shstrndx >= sections_.size()) {
    fail("is damaged: it has no section names");
  }
  const std::string_view names = content(sections_[head.e_shstrndx]);
  for (size_t i = 0; i < sections_.size(); ++i) {
    sections_[i].name = text_at(names, headers[i].sh_name);
  }
}

// Whoever loads a library reads these parts of it without looking where the file ends.
void elf_file::check_segments() const {
  const auto head = at<Elf64_Ehdr>(0);
  for (uint64_t i = 0; i < head.e_phnum; ++i) {
    const auto each = at<Elf64_Phdr>(head.e_phoff + i * sizeof(Elf64_Phdr));
    if (each.p_type == PT_LOAD && (each.p_offset > bytes_.size() || bytes_.size() - each.p_offset < each.p_filesz)) {
      fail("is truncated: it has only " + std::to_string(bytes_.size()) + " bytes");
    }
  }
}

void elf_file::fail(const std::string &why) const {
  throw error(place{file_}, why);
}

template <typename record_t>
record_t elf_file::at(uint64_t offset) const {
  if (offset > bytes_.size() || bytes_.size() - offset < sizeof(record_t)) {
    fail("is truncated: it has only " + std::to_string(bytes_.size()) + " bytes");
  }
  record_t record;
  std::memcpy(&record, bytes_.data() + offset, sizeof record);
  return record;
}

std::string_view elf_file::content(const elf_section &section) const {
  if (section.type == SHT_NOBITS || section.type == SHT_NULL) {
    return {};
  }
  if (section.offset > bytes_.size() || bytes_.size() - section.offset < section.size) {
    fail("is truncated: section '" + section.name + "' ends after byte " + std::to_string(bytes_.size()));
  }
  return std::string_view(bytes_).substr(section.offset, section.size);
}

std::string elf_file::text_at(std::string_view texts, uint64_t offset) const {
  const size_t end = offset < texts.size() ? texts.find('\0', offset) : std::string_view::npos;
  if (end == std::string_view::npos) {
    fail("is damaged: a name is at offset " + std::to_string(offset) + " of " + std::to_string(texts.size()));
  }
  return std::string(texts.substr(offset, end - offset));
}

template <typename record_t>
std::vector<record_t> elf_file::table(const elf_section &section) const {
  std::vector<record_t> records(content(section).size() / sizeof(record_t));
  for (size_t i = 0; i < records.size(); ++i) {
    records[i] = at<record_t>(section.offset + i * sizeof(record_t));
  }
  return records;
}

const elf_section *elf_file::section(std::string_view name) const {
  const auto found = std::ranges::find(sections_, name, &elf_section::name);
  return found == sections_.end() ? nullptr : &*found;
}

std::optional<std::string> elf_file::abi_version() const {
  const elf_section *found = section("ymap.abi");
  if (found == nullptr) {
    return std::nullopt;
  }
  const std::string own = std::to_string(YFW_ABI_VERSION);
  std::string version;
  for (std::string_view rest = content(*found); !rest.empty() && (version.empty() || version == own);) {
    version = rest.substr(0, rest.find('\0'));
    rest.remove_prefix(std::min(version.size() + 1, rest.size()));
  }
  return version;
}

const elf_section *elf_file::of_type(uint32_t type) const {
  const auto found = std::ranges::find(sections_, type, &elf_section::type);
  return found == sections_.end() ? nullptr : &*found;
}

const elf_section &elf_file::linked(const elf_section &section) const {
  if (section.link >= sections_.size()) {
    fail("is damaged: section '" + section.name + "' is not linked to another section");
  }
  return sections_[section.link];
}

std::vector<elf_symbol> elf_file::symbols(const elf_section &section) const {
  const std::string_view names = content(linked(section));
  std::vector<elf_symbol> result;
  for (const auto &each : table<Elf64_Sym>(section)) {
    const unsigned char kind = ELF64_ST_TYPE(each.st_info);
    result.push_back({text_at(names, each.st_name), "", each.st_value, each.st_size, each.st_shndx != SHN_UNDEF,
                      ELF64_ST_BIND(each.st_info) == STB_WEAK, kind == STT_FUNC || kind == STT_GNU_IFUNC,
                      each.st_shndx});
  }
  return result;
}

std::vector<elf_symbol> elf_file::dynamic_symbols() const {
  const elf_section *section = of_type(SHT_DYNSYM);
  if (section == nullptr) {
    fail("has no dynamic symbols");
  }
  std::vector<elf_symbol> result = symbols(*section);
  const elf_section *versions = of_type(SHT_GNU_versym);
  const std::vector<std::string> names = version_names();
  const auto numbers = versions != nullptr ? table<uint16_t>(*versions) : std::vector<uint16_t>();
  for (size_t i = 0; i < std::min(result.size(), numbers.size()); ++i) {
    const size_t number = numbers[i] & 0x7fffU;
    result[i].version = !result[i].is_defined && number < names.size() ? names[number] : "";
  }
  std::erase_if(result, [](const elf_symbol &symbol) { return symbol.name.empty(); });
  return result;
}

std::optional<std::vector<elf_symbol>> elf_file::all_symbols() const {
  const elf_section *section = of_type(SHT_SYMTAB);
  return section == nullptr ? std::nullopt : std::optional(symbols(*section));
}

// The names of the versions that it needs of others, by the number that its symbols have for them.
std::vector<std::string> elf_file::version_names() const {
  std::vector<std::string> result;
  const elf_section *section = of_type(SHT_GNU_verneed);
  if (section == nullptr) {
    return result;
  }
  const std::string_view texts = content(linked(*section));
  const uint64_t end = section->offset + content(*section).size();
  for (uint64_t of_file = section->offset; of_file < end;) {
    const auto need = at<Elf64_Verneed>(of_file);
    uint64_t of_version = of_file + need.vn_aux;
    for (unsigned i = 0; i < need.vn_cnt && of_version < end; ++i) {
      const auto version = at<Elf64_Vernaux>(of_version);
      const size_t number = version.vna_other & 0x7fffU;
      result.resize(std::max(result.size(), number + 1));
      result[number] = text_at(texts, version.vna_name);
      if (version.vna_next == 0) {
        break;
      }
      of_version += version.vna_next;
    }
    if (need.vn_next == 0) {
      break;
    }
    of_file += need.vn_next;
  }
  return result;
}

std::vector<std::string> elf_file::needed() const {
  std::vector<std::string> result;
  const elf_section *section = of_type(SHT_DYNAMIC);
  if (section == nullptr) {
    fail("is not a shared library: it has no dynamic section");
  }
  const std::string_view texts = content(linked(*section));
  for (const auto &each : table<Elf64_Dyn>(*section)) {
    if (each.d_tag == DT_NULL) {
      break;
    }
    if (each.d_tag == DT_NEEDED) {
      result.push_back(text_at(texts, each.d_un.d_val));
    }
  }
  return result;
}

std::set<std::string> elf_file::relocated_names() const {
  std::set<std::string> names;
  for (const elf_section &section : sections_) {
    if (section.type != SHT_RELA || linked(section).type != SHT_DYNSYM) {
      continue;
    }
    const std::vector<elf_symbol> known = symbols(linked(section));
    for (const auto &each : table<Elf64_Rela>(section)) {
      const uint64_t number = ELF64_R_SYM(each.r_info);
      if (number != 0 && number < known.size()) {
        names.insert(known[number].name);
      }
    }
  }
  return names;
}

namespace {

template <typename number_t>
number_t number_at(std::string_view code, size_t offset) {
  number_t number;
  std::memcpy(&number, code.data() + offset, sizeof number);
  return number;
}

// call, jmp and lea with a distance of 32 bits from the end of the instruction. The instructions before are not taken
// apart, so that a few addresses are found that are none.
void add_x86_references(std::string_view code, uint64_t address, std::multimap<uint64_t, uint64_t> &found) {
  for (size_t i = 0; i + 5 <= code.size(); ++i) {
    const auto byte = static_cast<unsigned char>(code[i]);
    const bool is_branch = byte == 0xe8 || byte == 0xe9;
    const bool is_lea = byte == 0x8d && i + 6 <= code.size() && (code[i + 1] & 0xc7) == 0x05;
    if (is_branch || is_lea) {
      const size_t distance_at = i + (is_lea ? 2 : 1);
      const auto distance = static_cast<uint64_t>(int64_t{number_at<int32_t>(code, distance_at)});
      found.emplace(address + distance_at + 4 + distance, address + i);
    }
  }
}

// bl and b with a distance of 26 bits in words, and adrp with the add behind it.
void add_arm_references(std::string_view code, uint64_t address, std::multimap<uint64_t, uint64_t> &found) {
  const auto sign_extended = [](uint64_t value, unsigned bits) {
    const uint64_t sign = uint64_t{1} << (bits - 1);
    return (value ^ sign) - sign;
  };
  for (size_t i = 0; i + 4 <= code.size(); i += 4) {
    const auto word = number_at<uint32_t>(code, i);
    if ((word & 0x7c000000U) == 0x14000000U) {
      found.emplace(address + i + sign_extended(word & 0x03ffffffU, 26) * 4, address + i);
    } else if ((word & 0x9f000000U) == 0x90000000U && i + 8 <= code.size()) {
      const auto next = number_at<uint32_t>(code, i + 4);
      const uint64_t pages = sign_extended((word >> 5U & 0x7ffffU) << 2U | (word >> 29U & 3U), 21);
      const uint64_t page = ((address + i) & ~uint64_t{0xfff}) + pages * 4096;
      if ((next & 0xffc00000U) == 0x91000000U) {
        found.emplace(page + (next >> 10U & 0xfffU), address + i);
      }
    }
  }
}

}  // namespace

std::multimap<uint64_t, uint64_t> elf_file::references() const {
  std::multimap<uint64_t, uint64_t> found;
  for (const elf_section &section : sections_) {
    if ((section.flags & SHF_EXECINSTR) == 0) {
      continue;
    }
    if (machine_ == EM_X86_64) {
      add_x86_references(content(section), section.address, found);
    } else {
      add_arm_references(content(section), section.address, found);
    }
  }
  for (const elf_section &section : sections_) {
    if (section.type != SHT_RELA) {
      continue;
    }
    for (const auto &each : table<Elf64_Rela>(section)) {
      found.emplace(ELF64_R_SYM(each.r_info) == 0 ? static_cast<uint64_t>(each.r_addend) : 0, each.r_offset);
    }
  }
  return found;
}

}  // namespace yfw
