// Every error names the line and the word. Each row takes a sound table, replaces one line, and expects one message.
#include "model.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace {

struct error_row {
  const char *name;
  const char *table;  // in data/golden/models
  unsigned line;      // that is replaced
  const char *text;   // in its place, one line or more
  const char *error;  // line and text
};

std::string with_line(const error_row &row) {
  std::ifstream input(std::string(DATA_FOLDER "/golden/models/") + row.table);
  std::ostringstream text;
  unsigned number = 0;
  for (std::string line; std::getline(input, line);) {
    text << (++number == row.line ? row.text : line) << '\n';
  }
  return text.str();
}

// The message that a table leads to, or nothing when it is sound.
std::string error_of(const std::string &file) {
  try {
    ymapgen::build_model(ymapgen::read_table(file), {DATA_FOLDER "/golden/yang", DATA_FOLDER "/wrong"});
  } catch (const ymapgen::error &wrong) {
    return wrong.what();
  }
  return "";
}

class TableError : public testing::TestWithParam<error_row> {};

TEST_P(TableError, NamesLineAndWord) {
  const std::string file = testing::TempDir() + "ymapgen_" + GetParam().name + ".map";
  std::ofstream(file) << with_line(GetParam());
  EXPECT_EQ(error_of(file), file + ":" + GetParam().error);
}

const char *const sky = "sky-weather.map";
const char *const cfg = "mast-cfg.map";
const char *const oper = "mast-oper.map";
const auto name_of = [](const auto &row) { return std::string(row.param.name); };

// Rows, each inside the one before, as deep as a line may be long.
std::string nested_rows() {
  std::string rows;
  for (size_t depth = 0; depth < 2000; ++depth) {
    rows += std::string(2 * depth, ' ') + "weather walk\n";
  }
  return rows;
}

const std::string long_line = "    rain unmapped " + std::string(10000, 'x');
const std::string deep_rows = nested_rows();

INSTANTIATE_TEST_SUITE_P(
    Heads, TableError,
    testing::Values(
        error_row{
            "Keyword", sky, 2, "plugin sky",
            "2: 'plugin' is not a keyword of the head: one of plug-in, module, direction, include, target, wanted, "
            "nodes"},
        error_row{"PlugInName", sky, 2, "plug-in my-sky",
                  "2: 'my-sky' is not a C name: letters, digits and underscores"},
        error_row{"ModuleMissing", sky, 3, "", "9: the head must say 'module' once"},
        error_row{"ModuleTwice", sky, 3, "module sky-weather\nmodule sky-list", "10: the head must say 'module' once"},
        error_row{"ModuleWithRevision", sky, 3, "module sky-weather 2024-01-01",
                  "3: 'module' has the wrong number of values: write 'module NAME'"},
        error_row{"Direction", sky, 4, "direction both", "4: 'both' is not a direction: xo or ox"},
        error_row{"Flag", sky, 6, "target mast-cfg flag=2", "6: 'flag=2' is not a flag: flag=0 or flag=1"},
        error_row{"FlagMissing", sky, 6, "target mast-cfg",
                  "6: 'target' has the wrong number of values: write 'target MODULE flag=0|1'"},
        error_row{"NodesMissing", cfg, 9, "",
                  "10: 'scale' is not a keyword of the head: one of plug-in, module, "
                  "direction, include, target, wanted, nodes"},
        error_row{"Include", cfg, 5, "include sky$hand.h",
                  "5: 'sky$hand.h' is not a name of a header: letters, digits, '_', '-', '.' and '/'"},
        error_row{"Wanted", cfg, 7, "", "10: 'report' needs a line 'wanted FUNCTION' in the head"}),
    name_of);

INSTANTIATE_TEST_SUITE_P(
    Modules, TableError,
    testing::Values(
        error_row{"NotThere", sky, 6, "target mast-config flag=1",
                  "6: cannot load module 'mast-config': Data model \"mast-config\" not found in local searchdirs."},
        error_row{"TwoPlaces", sky, 3, "module two-places",
                  "3: module 'two-places' has nodes below '/skies/sky' and '/masts/mast-entry': a table serves one "
                  "place"},
        error_row{"TwoTops", sky, 3, "module two-tops",
                  "3: module 'two-tops' has '/second' at its top: it must have one container, or an augment"},
        error_row{"Broken", sky, 3, "module broken",
                  "3: cannot load module 'broken': Referenced type \"strng\" not found. /broken:cut"},
        error_row{"Bare", sky, 3, "module bare", "3: module 'bare' has no data nodes"}),
    name_of);

INSTANTIATE_TEST_SUITE_P(
    Lines, TableError,
    testing::Values(
        error_row{"NoAction", sky, 16, "    rain", "16: 'rain' has no action"},
        error_row{"Action", sky, 16, "    rain skip",
                  "16: 'skip' is not an action: one of walk, by-hand, ignore, absent, add, report, manual, set, read, "
                  "unmapped"},
        error_row{"Option", sky, 16, "    rain unmapped twice", "16: 'twice' is not an option of 'unmapped'"},
        error_row{"When", sky, 16, "    rain unmapped when=0", "16: 'when=0' is not an option of 'unmapped'"},
        error_row{"ViaNothing", sky, 12, "    unit set /masts/mast-entry/scale via",
                  "12: 'via' is not an option of 'set'"},
        error_row{"ViaNoName", sky, 12, "    unit set /masts/mast-entry/scale via a-b",
                  "12: 'a-b' is not a C name: letters, digits and underscores"},
        error_row{"NoPath", sky, 12, "    unit set", "12: 'set' takes 1 absolute paths, not 0"},
        error_row{"TooManyPaths", sky, 16, "    rain unmapped /readings/sensor/metres",
                  "16: 'unmapped' takes 0 absolute paths, not 1"},
        error_row{"Indent", sky, 16, "      rain unmapped",
                  "16: 'rain' is not a child of '/skies/sky/weather/state/air-pressure'"},
        error_row{"OddIndent", sky, 16, "     rain unmapped",
                  "16: 'rain' is indented by 5 blanks: two for each level, at most one level below the line before"},
        error_row{"Tab", sky, 16, "\train unmapped", "16: a tab in the line: use blanks"},
        error_row{"ControlCharacter", sky, 16, "    rain \x1b[31munmapped", "16: a control character in the line"},
        error_row{"LongLine", sky, 16, long_line.c_str(), "16: the line is longer than 4096 characters"},
        error_row{"Deep", sky, 11, deep_rows.c_str(), "139: nodes inside each other more than 128 deep"}),
    name_of);

INSTANTIATE_TEST_SUITE_P(
    Nodes, TableError,
    testing::Values(
        error_row{"NotAChild", sky, 12, "    unti set /masts/mast-entry/scale",
                  "12: 'unti' is not a child of '/skies/sky/weather/config'"},
        error_row{"NotAtTheTop", oper, 8, "reading walk", "8: 'reading' is not a child of '/'"},
        error_row{"LeftOut", sky, 12, "",
                  "13: 'unit' of '/skies/sky/weather/config' needs a line before 'log-interval': one for each node, "
                  "in the order of the module"},
        error_row{"LeftOutAtTheEnd", sky, 18, "",
                  "17: 'wind' of '/skies/sky/weather/state' has no line: write 'ignore' if nothing maps it"},
        error_row{"OtherOrder", sky, 12, "    log-interval manual",
                  "12: 'unit' of '/skies/sky/weather/config' needs a line before 'log-interval': one for each node, in "
                  "the order of the module"},
        error_row{"Twice", sky, 18, "    wind ignore\n    wind ignore",
                  "19: 'wind' of '/skies/sky/weather/state' has a line already"},
        error_row{"BelowAbsent", sky, 17, "    haze absent\n      drops ignore",
                  "18: 'drops' is not a child of '/skies/sky/weather/state/haze'"},
        error_row{"BelowALeaf", sky, 16, "    rain unmapped\n      drops ignore",
                  "17: 'drops' is not a child of '/skies/sky/weather/state/rain'"},
        error_row{"WalkALeaf", sky, 16, "    rain walk",
                  "16: 'walk' does not fit the leaf '/skies/sky/weather/state/rain' in direction ox: one of by-hand, "
                  "ignore, absent, manual, set, read, unmapped"},
        error_row{"AddInARequest", sky, 16, "    rain add /readings/sensor/metres",
                  "16: 'add' does not fit the leaf '/skies/sky/weather/state/rain' in direction ox: one of by-hand, "
                  "ignore, absent, manual, set, read, unmapped"},
        error_row{"SetAState", sky, 16, "    rain set /readings/sensor/metres",
                  "16: 'set' does not fit '/skies/sky/weather/state/rain', which is config false: write 'read'"},
        error_row{"IgnoreAContainer", oper, 8, "readings ignore",
                  "8: 'ignore' does not fit the container '/readings' in direction xo: one of walk, by-hand, absent"},
        error_row{"ReplaceNothing", oper, 10, "    id ignore replaced",
                  "10: 'replaced' does not fit 'id', which has no generated body: write 'by-hand'"},
        error_row{"HookOfALeaf", oper, 10, "    id ignore augments=by-hand",
                  "10: 'augments=by-hand' does not fit 'id': it is for containers and lists"}),
    name_of);

INSTANTIATE_TEST_SUITE_P(
    Paths, TableError,
    testing::Values(
        error_row{"NotInTheModules", oper, 11, "    hecto-pascal add /skies/sky/weather/state/air-presure",
                  "11: '/skies/sky/weather/state/air-presure' is no path of the modules: 'air-presure' is not a child "
                  "of '/skies/sky/weather/state'"},
        error_row{"NotALeaf", oper, 11, "    hecto-pascal add /skies/sky/weather/state",
                  "11: '/skies/sky/weather/state' is not a leaf of a target module: it must be one, of a module with a "
                  "line 'target'"},
        error_row{"NotATarget", oper, 11, "    hecto-pascal add /skies/sky/name",
                  "11: '/skies/sky/name' is not a leaf of a target module: it must be one, of a module with a line "
                  "'target'"}),
    name_of);

// Nodes that cannot be mapped at all, in a module of their own.
struct odd_row {
  const char *name;
  const char *direction;
  const char *nodes;
  const char *error;
};

class OddModule : public testing::TestWithParam<odd_row> {};

TEST_P(OddModule, NamesLineAndWord) {
  const std::string file = testing::TempDir() + "ymapgen_odd_" + GetParam().name + ".map";
  std::ofstream(file) << "plug-in sky\nmodule odd\ndirection " << GetParam().direction << "\nnodes\ntop walk\n"
                      << GetParam().nodes;
  EXPECT_EQ(error_of(file), file + ":" + GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Nodes, OddModule,
    testing::Values(odd_row{"SameName", "xo",
                            "  left-hand walk\n    same ignore\n  lefthand walk\n    other ignore\n  item walk\n"
                            "    id ignore\n  blob ignore\n",
                            "8: '/top/lefthand' and '/top/left-hand' would both be named 'top_lefthand'"},
                    odd_row{"AnyData", "xo",
                            "  left-hand walk\n    same ignore\n  lefthand absent\n  item walk\n    id ignore\n"
                            "  blob ignore\n",
                            "11: '/top/blob' is anydata or anyxml, which cannot be mapped"},
                    odd_row{"ListInARequest", "ox",
                            "  left-hand absent\n  lefthand absent\n  item walk\n    id ignore\n"
                            "  blob ignore\n",
                            "8: '/top/item' is a list: requests are walked through containers only"}),
    [](const auto &row) { return std::string(row.param.name); });

}  // namespace
