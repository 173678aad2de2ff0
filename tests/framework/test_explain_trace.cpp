// How an explanation reads the long-form trace, and how known losses are read.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "yfw/error.hpp"
#include "yfw/explain.hpp"
#include "yfw/roundtrip.hpp"
#include "yfw/trace.hpp"

namespace {

// "name role depth: said" for each function.
std::vector<std::string> told(const std::vector<std::string> &lines) {
  std::vector<std::string> result;
  for (const yfw::traced_function &function : yfw::traced_functions(lines)) {
    std::string text =
        function.name + " " + std::string(to_string(function.role)) + " " + std::to_string(function.depth);
    for (const std::string &said : function.said) {
      text += ": " + said;
    }
    result.push_back(text);
  }
  return result;
}

using Lines = std::vector<std::string>;

TEST(ExplainTrace, NestsFunctionsByStartAndEnd) {
  EXPECT_EQ(
      told({"#1: TRC: ymap_ox_a_m_lvla_top:10 ctx=0x1,Start", "#2: TRC: ymap_ox_a_m_lvla_top_leaf:20 ctx=0x1,Start",
            "#3: TRC: __ymap_ox_a_m_leaf_lvla_top_leaf:30 ctx=0x1,Start",
            "#4: ERR: __ymap_ox_a_m_leaf_lvla_top_leaf:31 ctx=0x1,Invalid value 'a: b', sorry",
            "#5: TRC: __ymap_ox_a_m_leaf_lvla_top_leaf:32 ctx=0x1,End",
            "#6: TRC: ymap_ox_a_m_lvla_top_leaf:22 ctx=0x1,End", "#7: TRC: unit_of:5 ctx=0x1,Start",
            "#8: TRC: unit_of:7 ctx=0x1,End", "#9: TRC: ymap_ox_a_m_lvla_top:19 ctx=0x1,End"}),
      (Lines{"ymap_ox_a_m_lvla_top walker 0", "ymap_ox_a_m_lvla_top_leaf walker 1",
             "__ymap_ox_a_m_leaf_lvla_top_leaf generated 2: Invalid value 'a: b', sorry", "unit_of helper 1"}));
}

TEST(ExplainTrace, EndsFunctionsThatFailedWithoutEnd) {
  EXPECT_EQ(told({"#1: TRC: f_lvla_a:1 ctx=0x1,Start", "#2: TRC: f_man_leaf_lvla_a_b:2 ctx=0x1,Start",
                  "#3: TRC: f_lvla_a:3 ctx=0x1,End", "#4: TRC: f_lvla_c:4 ctx=0x1,Start"}),
            (Lines{"f_lvla_a walker 0", "f_man_leaf_lvla_a_b hand-written 1", "f_lvla_c walker 0"}));
}

TEST(ExplainTrace, KeepsFunctionsWithoutStart) {
  EXPECT_EQ(told({"#1: TRC: f_lvla_a:1 ctx=0x1,Start", "#2: TRC: f_duck_map_container:2 ctx=0x1,End",
                  "#3: TRC: f_lvla_a_b:3 ctx=0x1,Start"}),
            (Lines{"f_lvla_a walker 0", "f_duck_map_container no-op 1", "f_lvla_a_b walker 1"}));
}

TEST(ExplainTrace, PassesOverOtherLines) {
  EXPECT_EQ(told({"", "(3 older lines lost)", "#1: TRC: f", "#1: TRC: f ctx=0x1,Start", "ctx=:: ,"}), Lines{});
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

TEST(KnownLosses, AreReadWordByWord) {
  const auto losses = yfw::read_known_losses(
      "# comment\n\n  set-get /a/b 'two words'  reason, with words \r\n"
      "read-answered\t/a\t*\tbecause\nset-get /c '' empty",
      "file");
  ASSERT_EQ(losses.size(), 3U);
  EXPECT_EQ(losses[0].path, "/a/b");
  EXPECT_EQ(losses[0].value, "two words");
  EXPECT_EQ(losses[0].reason, "reason, with words");
  EXPECT_EQ(losses[0].line, 3U);
  EXPECT_EQ(losses[1].which, yfw::law::read_answered);
  EXPECT_EQ(losses[1].value, "*");
  EXPECT_EQ(losses[2].value, "");
}

struct LossRow {
  const char *name, *value;
  std::optional<std::string> found;
  bool is_covered;
};

class KnownLossCovers : public testing::TestWithParam<LossRow> {};

TEST_P(KnownLossCovers, ByValue) {
  const yfw::known_loss known{yfw::law::set_get, "/a", GetParam().value, "reason", 1};
  EXPECT_EQ(known.covers({yfw::law::set_get, "/a", GetParam().found, "", ""}), GetParam().is_covered);
  EXPECT_FALSE(known.covers({yfw::law::delete_get, "/a", GetParam().found, "", ""}));
  EXPECT_FALSE(known.covers({yfw::law::set_get, "/a/b", GetParam().found, "", ""}));
}

INSTANTIATE_TEST_SUITE_P(Values, KnownLossCovers,
                         testing::Values(LossRow{"Same", "x", "x", true}, LossRow{"Other", "x", "y", false},
                                         LossRow{"Any", "*", "y", true}, LossRow{"AnyOrNone", "*", {}, true},
                                         LossRow{"EmptyIsNoNone", "", {}, false}),
                         [](const auto &row) { return std::string(row.param.name); });

struct BadRow {
  const char *name, *line, *message;
};

class KnownLossLine : public testing::TestWithParam<BadRow> {};

TEST_P(KnownLossLine, IsRefused) {
  try {
    (void)yfw::read_known_losses(std::string("\n") + GetParam().line, "file");
    FAIL() << "is taken";
  } catch (const yfw::error &refused) {
    EXPECT_STREQ(refused.what(), GetParam().message);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Lines, KnownLossLine,
    testing::Values(BadRow{"NoReason", "set-get /a x ", "file:2: has no reason; a line is: law path value reason"},
                    BadRow{"OneWord", "set-get", "file:2: '' is not a path, which begins with '/'"},
                    BadRow{"NoLaw", "get-set /a x y",
                           "file:2: 'get-set' is not a law, which are 'set-get', 'delete-get', 'absent-get', "
                           "'native-stable', 'read-answered'"}),
    [](const auto &row) { return std::string(row.param.name); });

}  // namespace
