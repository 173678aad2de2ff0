// Captures: taken from a call, read again, replayed, damaged.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <sstream>

#include "capture_anonymiser.hpp"
#include "library.hpp"
#include "yfw/capture.hpp"

namespace {

namespace fs = std::filesystem;

const yfw::plugin &mapping() {
  static const yfw::plugin plugin = yfw::plugin::load_without_manifest(YFW_TEST_PLUGIN);
  return plugin;
}

// A set of a speed, as it is when it is handed to the Ethernet mapping: every kind of line of a capture is in it.
std::string sample() {
  std::ifstream file(YFW_TEST_DATA "/set-speed.capture");
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string replaced(std::string text, const std::string &what, const std::string &with) {
  const size_t at = text.find(what);
  EXPECT_NE(std::string::npos, at) << what;
  return at == std::string::npos ? text : text.replace(at, what.size(), with);
}

// The lines of a capture that say what the plug-in did.
std::vector<std::string> acts_in(const std::string &capture) {
  std::vector<std::string> acts;
  std::istringstream stream(capture);
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with("call ") || line.starts_with("wrote ") || line.starts_with("return ")) {
      acts.push_back(line);
    }
  }
  return acts;
}

TEST(Capture, ReplaysWithoutADifference) {
  const yfw::capture recorded = yfw::capture::read(sample(), "sample");
  const std::vector<yfw::plugin_event> acts = yfw::replay(recorded, mapping());
  EXPECT_TRUE(recorded.has_returned());
  std::vector<std::string> replayed;
  std::ranges::transform(acts, std::back_inserter(replayed), &yfw::plugin_event::text);
  EXPECT_EQ(acts_in(sample()), replayed);
  EXPECT_FALSE(yfw::first_difference(recorded.events(), acts).has_value());
}

struct DifferenceRow {
  const char *name, *captured, *changed, *expected, *actual, *arguments;
  unsigned line;
};

class Difference : public testing::TestWithParam<DifferenceRow> {};

// A capture that tells of another plug-in, or another input: the first difference, and where it is.
TEST_P(Difference, IsTheFirst) {
  const DifferenceRow &row = GetParam();
  const yfw::capture recorded = yfw::capture::read(replaced(sample(), row.captured, row.changed), "sample");
  const auto where = yfw::first_difference(recorded.events(), yfw::replay(recorded, mapping()));
  ASSERT_TRUE(where.has_value());
  EXPECT_EQ(row.line, where->expected ? where->expected->line : 0);
  EXPECT_NE(std::string::npos, (where->expected ? where->expected->text : "nothing").find(row.expected));
  EXPECT_NE(std::string::npos, (where->actual ? where->actual->text : "nothing").find(row.actual));
  std::string names;
  for (const std::string &name : where->differing_arguments()) {
    names += name + ' ';
  }
  EXPECT_EQ(row.arguments, names);
}

INSTANTIATE_TEST_SUITE_P(
    Of, Difference,
    testing::Values(
        DifferenceRow{"AnArgument", "value=\"100\"", "value=\"10\"", "value=\"10\"", "value=\"100\"", "value ", 23},
        DifferenceRow{"TheInput", "SPEED_100MB", "SPEED_1GB", "value=\"100\"", "value=\"1000\"", "value ", 23},
        DifferenceRow{"AStatus", "return 0x0", "return 0x33", "return 0x33", "return 0x0", "", 34},
        DifferenceRow{"AWrite", "wrote #1.1 mark 0 -> 1", "wrote #1.1 mark 0 -> 6", "-> 6", "-> 1", "", 30},
        DifferenceRow{"AnAnswer", "answer node=made1", "answer status=0x77", "wrote made1", "ethernet/speed", "", 22},
        DifferenceRow{"TheRequest", "operation=1 error", "operation=0 error", "wrote #1.1 operation", "call ", "", 17}),
    [](const auto &row) { return std::string(row.param.name); });

struct MalformedRow {
  const char *name, *good, *bad, *message;
};

class Malformed : public testing::TestWithParam<MalformedRow> {};

TEST_P(Malformed, IsRefused) {
  const MalformedRow &row = GetParam();
  const std::string text = replaced(sample(), row.good, row.bad);
  EXPECT_EQ(row.message, thrown_by([&] { yfw::capture::read(text, "c"); }));
}

INSTANTIATE_TEST_SUITE_P(
    Line, Malformed,
    testing::Values(
        MalformedRow{"OtherFile", "ymap-capture 1", "ymap-capture 2",
                     "c:1: invalid first line 'ymap-capture 2', expected 'ymap-capture 1'"},
        MalformedRow{"NoFunction", "function ", "fun ", "c:2: is not the name of the function that was called"},
        MalformedRow{"OtherForm", "form=entry", "form=exit",
                     "c:2: invalid form 'exit', expected 'entry', 'report-defaults', 'create-defaults'"},
        MalformedRow{"FormOfAnother", "form=entry", "form=create-defaults",
                     "c:2: 'ymap_ox_oc_ethernet_openconfigifethernet_augment_lvla_interface' is not the name of a "
                     "function of that form"},
        MalformedRow{"NoRecord", "record ", "rec ", "c:3: is not the record of the request"},
        MalformedRow{"LargeNumber", "operation=1", "operation=4294967296",
                     "c:3: invalid number '4294967296', expected 0..4294967295"},
        MalformedRow{"LargeByte", "flags=0x40", "flags=0x140", "c:7: invalid number '0x140', expected 0..255"},
        MalformedRow{"NoQuotes", "value=\"SPEED_100MB\"", "value=SPEED_100MB",
                     "c:10: invalid value 'SPEED_100MB', expected null or a string in double quotes"},
        MalformedRow{"NoEnd", "\"SPEED_100MB\" ns=\"http://openconfig.net/yang/interfaces/ethernet\"", "\"SPEED",
                     "c:10: a string without a closing quote"},
        MalformedRow{"OddEscape", "SPEED_100MB", "SPEED\\q", "c:10: unknown escape '\\q'"},
        MalformedRow{"ZeroByte", "SPEED_100MB", "SPEED\\x00",
                     "c:10: '\\x' is not followed by two hexadecimal digits other than 00"},
        MalformedRow{"NoParent", "node #1.1 ", "node #2.1 ", "c:9: unknown node '#2'"},
        MalformedRow{"Gap", "node #1.2 ", "node #1.3 ", "c:10: is not the next child of '#1', which is number 2"},
        MalformedRow{"Twice", "node #1.2 ", "node #1.1 ", "c:10: '#1.1' is defined twice"},
        MalformedRow{"Count", "children=2", "children=3",
                     "c:8: has 2 children, but 'children' or 'flags' say otherwise"},
        MalformedRow{"NodeOfTheStack", "stack 1 node=stack1", "stack 1 node=stack2", "c:13: unknown node 'stack2'"},
        MalformedRow{"LevelOfTheStack", "stack 1", "stack 2", "c:13: '2' is not the next level of the stack"},
        MalformedRow{"AnswerFirst", "call yfw_map_add_to_node_hierarchy node=# level=1", "answer value=\"x\"",
                     "c:15: answers no call"},
        MalformedRow{"OddWord", "call yfw_map_add_to_node_hierarchy node=# level=1", "cal x",
                     "c:15: unknown word 'cal', expected 'above', 'node', 'stack', 'call', 'answer', 'set', "
                     "'wrote', 'return'"},
        MalformedRow{"ChildrenSet", "answer node=made1", "set # children 1 -> 7", "c:21: unknown field 'children'"},
        MalformedRow{"NoNodeSet", "answer node=made1", "set null flags 0x0 -> 0x1", "c:21: unknown node 'null'"},
        MalformedRow{"AfterTheEnd", "return 0x0", "return 0x0\nreturn 0x0", "c:35: continues after 'return'"}),
    [](const auto &row) { return std::string(row.param.name); });

// Damaged captures are refused or replayed, whatever then comes of it; nothing else happens.
TEST(Capture, OutlivesDamage) {
  std::mt19937 random(20240501);
  const std::string good = sample();
  const std::string letters = "#.\" =\\01x-null\nmade";
  unsigned refused = 0;
  unsigned replayed = 0;
  for (unsigned round = 0; round < 4000; ++round) {
    std::string text = good;
    for (size_t faults = 1 + random() % 3; faults != 0; --faults) {
      const size_t at = random() % text.size();
      switch (random() % 3) {
        case 0:
          text[at] = letters[random() % letters.size()];
          break;
        case 1:
          text.erase(at, 1 + random() % 40);
          break;
        default:
          text.insert(at, good.substr(random() % good.size(), random() % 80));
      }
    }
    try {
      replayed += yfw::replay(yfw::capture::read(text, "damaged"), mapping()).empty() ? 0U : 1U;
    } catch (const yfw::error &) {
      ++refused;
    }
  }
  EXPECT_GT(refused, 1000U);
  EXPECT_GT(replayed, 300U);
}

struct AnonymousRow {
  const char *name, *text, *expected;
};

class Anonymous : public testing::TestWithParam<AnonymousRow> {};

// With the keys of the library below: "Emma", "10.1.0.7" and "Emma II".
TEST_P(Anonymous, KeepsTheForm) {
  yfw::document document = yfw::document::read(
      "<library xmlns='urn:test:library'><book><title>Emma</title></book><book><title>10.1.0.7</title></book>"
      "<book><title>42</title></book><book><title>Emma II</title></book></library>",
      "keys", library());
  yfw::anonymiser names;
  for (const yfw_node_t &root : document.roots()) {
    names.learn_keys(root);
  }
  EXPECT_EQ(GetParam().expected, names.replaced(GetParam().text));
  EXPECT_EQ(GetParam().expected, names.replaced(GetParam().text)) << "the second time";
}

INSTANTIATE_TEST_SUITE_P(
    Text, Anonymous,
    testing::Values(
        AnonymousRow{"Key", "Emma", "Xxxb"}, AnonymousRow{"InText", "link to Emma.", "link to Xxxb."},
        AnonymousRow{"LongerKey", "Emma II", "Xxxx XC"}, AnonymousRow{"PartOfAWord", "Emmas dilEmma", "Emmas dilEmma"},
        AnonymousRow{"Number", "42", "42"}, AnonymousRow{"Colons", "00:1B:2c:00:00:01", "02:00:00:00:00:01"},
        AnonymousRow{"AnyCase", "0A:1B:2C:00:00:01 0a:1b:2c:00:00:01", "02:00:00:00:00:01 02:00:00:00:00:01"},
        AnonymousRow{"Dots", "001b.2c00.0001 and 00:1b:2c:00:00:01", "0200.0000.0001 and 02:00:00:00:00:01"},
        AnonymousRow{"Ip4Key", "10.1.0.7/24", "198.18.0.1/24"},
        AnonymousRow{"Ip4", "from 10.9.8.7.", "from 198.18.0.2."},
        AnonymousRow{"Ip6", "fe80::1 fe80::1 fe80::2", "2001:db8::0:2 2001:db8::0:2 2001:db8::0:3"},
        AnonymousRow{"NoAddress", "12:30:45 1.2.3 SPEED_10MB a:b", "12:30:45 1.2.3 SPEED_10MB a:b"}),
    [](const auto &row) { return std::string(row.param.name); });

TEST(AnonymousAddresses, AreAsManyAsTheOthers) {
  yfw::anonymiser names;
  std::set<std::string> replaced;
  for (int i = 0; i < 600; ++i) {
    replaced.insert(names.replaced("10.1." + std::to_string(i / 200) + "." + std::to_string(i % 200)));
  }
  EXPECT_EQ(600U, replaced.size());
}

TEST(Capture, SessionsDoNotMix) {
  const fs::path directory = fs::temp_directory_path() / ("captures-" + std::to_string(::getpid()));
  fs::create_directories(directory);
  std::ofstream(directory / "0001-x.capture") << "";
  EXPECT_EQ(directory.string() + ": holds captures already; name another directory or remove them",
            thrown_by([&] { yfw::capture_session session(directory, false); }));
  fs::remove_all(directory);
}

}  // namespace
