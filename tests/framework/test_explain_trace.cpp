// The long-form trace as an explanation reads it, and the file of accepted differences.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "yfw/error.hpp"
#include "yfw/explain.hpp"
#include "yfw/roundtrip.hpp"
#include "yfw/trace.hpp"

namespace {

// "name role depth: message" for each function.
std::vector<std::string> functions_in(const std::vector<std::string> &lines) {
  std::vector<std::string> result;
  for (const yfw::traced_function &function : yfw::traced_functions(lines)) {
    std::string text =
        function.name + " " + std::string(to_string(function.role)) + " " + std::to_string(function.depth);
    for (const std::string &message : function.messages) {
      text += ": " + message;
    }
    result.push_back(text);
  }
  return result;
}

using Lines = std::vector<std::string>;

TEST(ExplainTrace, NestsFunctionsByStartAndEnd) {
  EXPECT_EQ(functions_in({"#1: TRC: ymap_ox_a_m_lvla_top:10 ctx=0x1,Start",
                          "#2: TRC: ymap_ox_a_m_lvla_top_leaf:20 ctx=0x1,Start",
                          "#3: TRC: __ymap_ox_a_m_leaf_lvla_top_leaf:30 ctx=0x1,Start",
                          "#4: ERR: __ymap_ox_a_m_leaf_lvla_top_leaf:31 ctx=0x1,Invalid value 'a: b', sorry",
                          "#5: TRC: __ymap_ox_a_m_leaf_lvla_top_leaf:32 ctx=0x1,End",
                          "#6: TRC: ymap_ox_a_m_lvla_top_leaf:22 ctx=0x1,End", "#7: TRC: unit_of:5 ctx=0x1,Start",
                          "#8: TRC: unit_of:7 ctx=0x1,End", "#9: TRC: ymap_ox_a_m_lvla_top:19 ctx=0x1,End"}),
            (Lines{"ymap_ox_a_m_lvla_top walker 0", "ymap_ox_a_m_lvla_top_leaf walker 1",
                   "__ymap_ox_a_m_leaf_lvla_top_leaf generated 2: Invalid value 'a: b', sorry", "unit_of helper 1"}));
}

TEST(ExplainTrace, EndsFunctionsThatFailedWithoutEnd) {
  EXPECT_EQ(functions_in({"#1: TRC: f_lvla_a:1 ctx=0x1,Start", "#2: TRC: f_man_leaf_lvla_a_b:2 ctx=0x1,Start",
                          "#3: TRC: f_lvla_a:3 ctx=0x1,End", "#4: TRC: f_lvla_c:4 ctx=0x1,Start"}),
            (Lines{"f_lvla_a walker 0", "f_man_leaf_lvla_a_b custom 1", "f_lvla_c walker 0"}));
}

TEST(ExplainTrace, KeepsFunctionsWithoutStart) {
  EXPECT_EQ(functions_in({"#1: TRC: f_lvla_a:1 ctx=0x1,Start", "#2: TRC: f_duck_map_container:2 ctx=0x1,End",
                          "#3: TRC: f_lvla_a_b:3 ctx=0x1,Start"}),
            (Lines{"f_lvla_a walker 0", "f_duck_map_container no-op 1", "f_lvla_a_b walker 1"}));
}

TEST(ExplainTrace, PassesOverOtherLines) {
  EXPECT_EQ(functions_in({"", "(3 older lines lost)", "#1: TRC: f", "#1: TRC: f ctx=0x1,Start", "ctx=:: ,"}), Lines{});
}

TEST(TraceRing, KeepsTheLastLinesAndCountsTheOthers) {
  yfw::trace_log log(nullptr, true, 2);
  for (const char *line : {"1", "2", "3", "4", "5"}) {
    log.write_long(line);
  }
  std::ostringstream ring;
  log.print_ring(ring);
  EXPECT_EQ("(3 older lines lost)\n4\n5\n", ring.str());
}

TEST(AcceptedDifferences, AreReadWordByWord) {
  const auto differences = yfw::read_accepted_differences(
      "# comment\n\n  set-get /a/b 'two words'  reason, with words \r\n"
      "read-answered\t/a\t*\tbecause\nset-get /c '' empty",
      "file");
  ASSERT_EQ(differences.size(), 3U);
  EXPECT_EQ(differences[0].path, "/a/b");
  EXPECT_EQ(differences[0].value, "two words");
  EXPECT_EQ(differences[0].reason, "reason, with words");
  EXPECT_EQ(differences[0].line, 3U);
  EXPECT_EQ(differences[1].which, yfw::property::read_answered);
  EXPECT_EQ(differences[1].value, "*");
  EXPECT_EQ(differences[2].value, "");
}

struct ValueRow {
  const char *name, *value;
  std::optional<std::string> found;
  bool is_covered;
};

class AcceptedDifferenceCovers : public testing::TestWithParam<ValueRow> {};

TEST_P(AcceptedDifferenceCovers, ByValue) {
  const yfw::accepted_difference known{yfw::property::set_get, "/a", GetParam().value, "reason", 1};
  EXPECT_EQ(known.covers({yfw::property::set_get, "/a", GetParam().found, "", ""}), GetParam().is_covered);
  EXPECT_FALSE(known.covers({yfw::property::delete_get, "/a", GetParam().found, "", ""}));
  EXPECT_FALSE(known.covers({yfw::property::set_get, "/a/b", GetParam().found, "", ""}));
}

INSTANTIATE_TEST_SUITE_P(Values, AcceptedDifferenceCovers,
                         testing::Values(ValueRow{"Same", "x", "x", true}, ValueRow{"Other", "x", "y", false},
                                         ValueRow{"Any", "*", "y", true}, ValueRow{"AnyOrNone", "*", {}, true},
                                         ValueRow{"EmptyIsNoNone", "", {}, false}),
                         [](const auto &row) { return std::string(row.param.name); });

struct BadRow {
  const char *name, *line, *message;
};

class AcceptedDifferenceLine : public testing::TestWithParam<BadRow> {};

TEST_P(AcceptedDifferenceLine, IsRejected) {
  try {
    (void)yfw::read_accepted_differences(std::string("\n") + GetParam().line, "file");
    FAIL() << "is accepted";
  } catch (const yfw::error &failure) {
    EXPECT_STREQ(failure.what(), GetParam().message);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Lines, AcceptedDifferenceLine,
    testing::Values(BadRow{"NoReason", "set-get /a x ",
                           "file:2: the reason is missing; a line is: property path value reason"},
                    BadRow{"OneWord", "set-get", "file:2: invalid path '', expected one that begins with '/'"},
                    BadRow{"NoProperty", "get-set /a x y",
                           "file:2: invalid property 'get-set', expected 'set-get', 'delete-get', 'absent-get', "
                           "'native-stable', 'read-answered'"}),
    [](const auto &row) { return std::string(row.param.name); });

}  // namespace
