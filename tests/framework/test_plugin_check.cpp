// The reader of libraries, on damaged ones. Its results for intact ones are in the transcripts of the program.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <fstream>
#include <random>

#include "mapping_name.hpp"
#include "yfw/error.hpp"
#include "yfw/internal/elf_file.hpp"

namespace {

std::string library_bytes() {
  std::ifstream file(YFW_TEST_PLUGIN, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Reads all that a check reads, and says whether that was possible.
bool is_readable(const std::string &bytes) {
  try {
    const yfw::elf_file library(bytes, "x");
    return library.dynamic_symbols().size() + library.needed().size() + library.relocated_names().size() +
               library.references().size() + library.all_symbols()->size() >
           0;
  } catch (const yfw::error &) {
    return false;
  }
}

TEST(ElfFile, RefusesWhatIsCutOff) {
  const std::string bytes = library_bytes();
  EXPECT_TRUE(is_readable(bytes));
  for (size_t size = 0; size < bytes.size(); size += 1 + bytes.size() / 50) {
    EXPECT_FALSE(is_readable(bytes.substr(0, size))) << size;
  }
}

// A library whose section headers are before the end is whole by them.
TEST(ElfFile, RefusesWhatLacksAPartThatIsLoaded) {
  std::string bytes = library_bytes();
  Elf64_Ehdr head;
  std::memcpy(&head, bytes.data(), sizeof head);
  for (unsigned i = 0; i < head.e_phnum; ++i) {
    const size_t at = head.e_phoff + i * sizeof(Elf64_Phdr);
    Elf64_Phdr part;
    std::memcpy(&part, bytes.data() + at, sizeof part);
    part.p_filesz += part.p_type == PT_LOAD ? bytes.size() : 0;
    std::memcpy(bytes.data() + at, &part, sizeof part);
  }
  EXPECT_FALSE(is_readable(bytes));
}

TEST(ElfFile, ReadsASectionThatEndsWithTheFile) {
  std::string bytes = library_bytes();
  Elf64_Ehdr head;
  std::memcpy(&head, bytes.data(), sizeof head);
  const size_t at = head.e_shoff + head.e_shstrndx * sizeof(Elf64_Shdr);
  Elf64_Shdr names;
  std::memcpy(&names, bytes.data() + at, sizeof names);
  const std::string text = bytes.substr(names.sh_offset, names.sh_size);
  names.sh_offset = bytes.size();
  std::memcpy(bytes.data() + at, &names, sizeof names);
  EXPECT_FALSE(is_readable(bytes + text.substr(1)));
  EXPECT_TRUE(is_readable(bytes + text));
}

struct DamageRow {
  const char *name;
  size_t field, bytes;  // of the head of the file
  bool is_needed;       // by who reads it
};

class DamagedHead : public testing::TestWithParam<DamageRow> {};

// What says nothing of the file's parts does no harm.
TEST_P(DamagedHead, IsRefusedWhereItMatters) {
  const DamageRow &row = GetParam();
  std::string bytes = library_bytes();
  bytes.replace(row.field, row.bytes, row.bytes, '\xa5');
  EXPECT_EQ(!row.is_needed, is_readable(bytes));
}

#define HEAD_FIELD(field) offsetof(Elf64_Ehdr, field), sizeof(Elf64_Ehdr::field)

INSTANTIATE_TEST_SUITE_P(
    Of, DamagedHead,
    testing::Values(DamageRow{"Magic", 1, 1, true}, DamageRow{"Class", EI_CLASS, 1, true},
                    DamageRow{"ByteOrder", EI_DATA, 1, true}, DamageRow{"Padding", EI_PAD, 7, false},
                    DamageRow{"Type", HEAD_FIELD(e_type), true}, DamageRow{"Machine", HEAD_FIELD(e_machine), true},
                    DamageRow{"Start", HEAD_FIELD(e_entry), false}, DamageRow{"Segments", HEAD_FIELD(e_phoff), true},
                    DamageRow{"Sections", HEAD_FIELD(e_shoff), true}, DamageRow{"Flags", HEAD_FIELD(e_flags), false},
                    DamageRow{"SectionBytes", HEAD_FIELD(e_shentsize), true},
                    DamageRow{"SectionCount", HEAD_FIELD(e_shnum), true},
                    DamageRow{"SectionNames", HEAD_FIELD(e_shstrndx), true}),
    [](const auto &row) { return std::string(row.param.name); });

// The section headers at the end, and the tables that they lead to: read or refused, whatever is in them.
TEST(ElfFile, OutlivesDamage) {
  const std::string good = library_bytes();
  std::mt19937 random(7);
  for (unsigned round = 0; round < 60; ++round) {
    std::string bytes = good;
    for (unsigned i = 0; i < 4; ++i) {
      bytes[bytes.size() - 1 - random() % 2000] = static_cast<char>(random());
    }
    EXPECT_NO_THROW((void)is_readable(bytes));
  }
}

struct NameRow {
  const char *name, *text, *parts;  // "": outside the scheme
};

class MappingName : public testing::TestWithParam<NameRow> {};

TEST_P(MappingName, IsParsed) {
  const auto parts = yfw::parse_mapping_name(GetParam().text);
  const std::string found = !parts ? ""
                                   : std::string(parts->is_body ? "body of " : "") +
                                         (parts->dir == yfw::direction::ox ? "ox " : "xo ") + parts->plugin + ' ' +
                                         parts->module + ' ' + std::string(to_string(parts->kind)) + ' ' + parts->path;
  EXPECT_EQ(GetParam().parts, found);
}

INSTANTIATE_TEST_SUITE_P(
    Of, MappingName,
    testing::Values(NameRow{"Leaf", "ymap_ox_a_b_shop_leaf_lvla_shelf_price", "ox a_b shop leaf shelf_price"},
                    NameRow{"Body", "__ymap_xo_a_shop_cont_lvla_shelf", "body of xo a shop container shelf"},
                    NameRow{"Custom", "ymap_xo_a_shop_man_leaf_lvla_x", "xo a shop custom leaf x"},
                    NameRow{"Hook", "ymap_xo_a_shop_lvla_x_y_parse_augments", "xo a shop augment hook x_y"},
                    NameRow{"Root", "ymap_xo_a_shop_lvla_x", "xo a shop entry point x"},
                    NameRow{"Augment", "ymap_ox_a_shop_augment_lvla_x", "ox a shop entry point x"},
                    NameRow{"NoOp", "ymap_ox_a_shop_duck_map_list", "ox a shop no-op list"},
                    NameRow{"NoModule", "ymap_ox_shop_leaf_lvla_x", ""},
                    NameRow{"NoDirection", "ymap_oo_a_shop_leaf_lvla_x", ""},
                    NameRow{"Capital", "ymap_ox_a_shop_leaf_lvla_X", ""},
                    NameRow{"Defaults", "ymap_xo_a_get_defaults", ""}),
    [](const auto &row) { return std::string(row.param.name); });

}  // namespace
