// What is measured of the shipped mapping, and the deviations that follow from made-up measurements.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "ethernet.hpp"
#include "yfw/coverage.hpp"
#include "yfw/deviations.hpp"
#include "yfw/error.hpp"
#include "yfw/internal/coverage_values.hpp"

namespace {

using yfw::leaf_operation;
using yfw::mapping_state;

// ---- the shipped mapping

const yfw::coverage &measured() {
  static yfw::trace_log log;
  static const yfw::coverage coverage = yfw::measure_coverage(modules(), mapping(), log);
  return coverage;
}

const yfw::coverage_cell *cell(const std::vector<yfw::coverage_row> &rows, std::string_view path, leaf_operation op) {
  for (const yfw::coverage_row &row : rows) {
    for (const yfw::coverage_cell &each : row.cells) {
      if (yfw::path(row.leaf).ends_with(path) && each.operation == op) {
        return &each;
      }
    }
  }
  return nullptr;
}

// "mapped: /ethernet/speed": the state and the ends of the paths.
std::string summary(const yfw::coverage_cell *cell) {
  if (cell == nullptr) {
    return "not counted";
  }
  std::string text(to_string(cell->state));
  for (const lysc_node *target : cell->targets()) {
    text += " " + std::string(yfw::name(target));
  }
  return text;
}

struct CellRow {
  const char *name;
  bool is_high;
  const char *path;
  leaf_operation operation;
  const char *expected;
};

void PrintTo(const CellRow &row, std::ostream *out) {
  *out << row.path;
}

class ShippedMapping : public testing::TestWithParam<CellRow> {};

TEST_P(ShippedMapping, IsMeasured) {
  const CellRow &row = GetParam();
  EXPECT_EQ(row.expected, summary(cell(row.is_high ? measured().high : measured().native, row.path, row.operation)));
}

constexpr auto get_config = leaf_operation::get_config;
constexpr auto get = leaf_operation::get;
constexpr auto set = leaf_operation::set;
constexpr auto remove_leaf = leaf_operation::remove;

INSTANTIATE_TEST_SUITE_P(
    Leaves, ShippedMapping,
    testing::Values(CellRow{"ReadConfig", true, "config/mac-address", get_config, "mapped mac-addr"},
                    CellRow{"Set", true, "config/duplex-mode", set, "mapped duplex"},
                    CellRow{"Delete", true, "config/port-speed", remove_leaf, "mapped speed"},
                    CellRow{"RefusedIdentities", true, "config/port-speed", set, "refused-value speed"},
                    CellRow{"StateIsRead", true, "state/hw-mac-address", get, "mapped burned-in-mac-address"},
                    CellRow{"StateIsNotSet", true, "state/mac-address", set, "unmapped-with-error"},
                    CellRow{"NotMapped", true, "in-mac-control-frames", get, "unmapped-with-error"},
                    CellRow{"RejectedTag", true, "state/effective-speed", get, "unmapped-with-error"},
                    CellRow{"KeyOfUnservedList", true, "interface/name", get, "not counted"},
                    CellRow{"OneReport", false, "ethernet/duplex", get_config, "mapped duplex-mode"},
                    CellRow{"TwoReports", false, "ethernet/duplex", get, "mapped-to-several duplex-mode duplex-mode"},
                    CellRow{"AbsenceIsReported", false, "auto-negotiation", get_config, "refused-value auto-negotiate"},
                    CellRow{"Ignored", false, "ethernet/loopback", get, "unmapped-silently"}),
    [](const auto &each) { return std::string(each.param.name); });

TEST(Coverage, TellsWhichValuesReachThePath) {
  std::vector<std::string> taken;
  for (const yfw::leaf_probe &probe : cell(measured().high, "config/port-speed", set)->probes) {
    if (probe.is_mapped()) {
      taken.push_back(*probe.value + "=" + probe.effects.front().value.value_or(""));
    }
  }
  EXPECT_EQ((std::vector<std::string>{"SPEED_10MB=10", "SPEED_100MB=100", "SPEED_1GB=1000"}), taken);
}

TEST(Coverage, CountsOnlyWhatTheModelAllows) {
  const yfw::coverage_share share = share_of(measured().high, set);
  EXPECT_EQ(6U, share.pairs);
  EXPECT_EQ(4U, share.mapped);
}

// ---- sample values

struct PatternRow {
  const char *name, *pattern, *sample;
};

void PrintTo(const PatternRow &row, std::ostream *out) {
  *out << row.pattern;
}

class PatternSample : public testing::TestWithParam<PatternRow> {};

TEST_P(PatternSample, IsAmongTheSamples) {
  const auto samples = yfw::pattern_samples(GetParam().pattern);
  EXPECT_NE(samples.end(), std::find(samples.begin(), samples.end(), GetParam().sample)) << samples.front();
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, PatternSample,
    testing::Values(PatternRow{"Counted", "[0-9a-fA-F]{2}(:[0-9a-fA-F]{2}){5}", "00:00:00:00:00:00"},
                    PatternRow{"FirstBranch", "SPEED_[0-9]+(MB|GB|G)", "SPEED_0MB"},
                    PatternRow{"LaterBranch", "a|bc|d", "bc"}, PatternRow{"Escapes", "\\d+\\.\\p{L}", "0.a"},
                    PatternRow{"InvertedClass", "[^a0]x?", "A"}, PatternRow{"ClassWithBracket", "[\\]]{1,3}", "]]"},
                    PatternRow{"Unfinished", "(a[b", "ab"}),
    [](const auto &each) { return std::string(each.param.name); });

struct ValueRow {
  const char *name, *path, *sample;
};

void PrintTo(const ValueRow &row, std::ostream *out) {
  *out << row.path;
}

class ThoroughValues : public testing::TestWithParam<ValueRow> {};

TEST_P(ThoroughValues, HaveTheSample) {
  const lysc_node *leaf = modules().find(GetParam().path, {});
  const auto values = yfw::thorough_values(modules(), leaf);
  EXPECT_EQ(1, std::ranges::count(values, GetParam().sample)) << testing::PrintToString(values);
  for (const std::string &value : values) {
    EXPECT_TRUE(modules().check_value(leaf, value).ok) << value;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Leaves, ThoroughValues,
    testing::Values(ValueRow{"Enumeration", "/interfaces/interface/ethernet/config/duplex-mode", "HALF"},
                    ValueRow{"Pattern", "/interfaces/interface/ethernet/config/mac-address", "00:00:00:00:00:00"},
                    ValueRow{"EndOfClasses", "/interfaces/interface/ethernet/config/mac-address", "FF:FF:FF:FF:FF:FF"},
                    ValueRow{"ShortestText", "/interfaces/interface/name", "a"},
                    ValueRow{"TextToEscape", "/interfaces/interface/name", R"( a <b> & "c" 'd' \ é )"}),
    [](const auto &each) { return std::string(each.param.name); });

TEST(Samples, HaveALongText) {
  const auto values = yfw::thorough_values(modules(), modules().find("/interfaces/interface/name", {}));
  EXPECT_TRUE(std::ranges::any_of(values, [](const std::string &value) { return value.size() > 1000; }));
}

// ---- deviations, of a garden whose mapping is made up

const yfw::schema &garden() {
  static const yfw::schema schema = yfw::schema::load({YFW_TEST_DATA "/garden"});
  return schema;
}

yfw::coverage_cell made_cell(leaf_operation operation, bool is_mapped) {
  return {operation, true, is_mapped ? mapping_state::mapped : mapping_state::unmapped_with_error, {}, {}};
}

// Every leaf of the garden is wholly mapped, but for those named: "" nothing of it, "r" read, or "s" set to some
// values.
yfw::coverage garden_with(const std::map<std::string, std::string> &exceptions,
                          const std::vector<std::string> &refused = {}) {
  yfw::coverage made;
  for (const char *leaf : {"name", "soil", "cover", "width", "heated", "warmth", "neighbour", "hut", "water/rate",
                           "water/timer", "water/tank/litres"}) {
    const auto found = exceptions.find(leaf);
    const std::string what = found == exceptions.end() ? "rs" : found->second;
    const bool is_read = what.find('r') != what.npos;
    const bool is_set = what.find('s') != what.npos;
    const lysc_node *node = garden().find(std::string("/garden/bed/") + leaf, {});
    made.high.push_back({node,
                         {made_cell(get_config, is_read), made_cell(get, is_read), made_cell(set, is_set),
                          made_cell(remove_leaf, is_set)}});
    if (found != exceptions.end() && is_set) {
      yfw::coverage_cell &cell = made.high.back().cells[2];
      cell.state = mapping_state::refused_value;
      for (const std::string &value : garden().allowed_values(node)) {
        const bool is_refused = std::find(refused.begin(), refused.end(), value) != refused.end();
        cell.probes.push_back({value, {{yfw::effect_kind::set, node, value}}, is_refused ? "refused" : ""});
      }
    }
  }
  return made;
}

std::string statements(const yfw::deviations &plan) {
  std::string text;
  for (const yfw::deviation &each : plan.statements) {
    constexpr const char *kinds[] = {"no ", "read-only ", "values "};
    text += kinds[static_cast<size_t>(each.kind)] + std::string(yfw::name(each.target)) + "; ";
  }
  for (const std::string &refused : plan.refused) {
    text += "refused " + refused + "; ";
  }
  return text;
}

struct PlanRow {
  const char *name;
  std::map<std::string, std::string> exceptions;
  std::vector<std::string> refused;
  const char *expected;
};

void PrintTo(const PlanRow &row, std::ostream *out) {
  *out << row.name;
}

class DeviationPlan : public testing::TestWithParam<PlanRow> {};

// What is planned is valid together with the modules, and reading it back finds no drift.
TEST_P(DeviationPlan, IsSmallAndTrue) {
  const yfw::coverage made = garden_with(GetParam().exceptions, GetParam().refused);
  const yfw::deviations plan = plan_deviations(made, garden());
  EXPECT_EQ(GetParam().expected, statements(plan));
  const std::string text = deviation_module(plan, made, garden(), {"garden-deviations", "urn:test:dev", ""});
  EXPECT_EQ(std::vector<std::string>{}, drift(read_deviations(text, "written", garden()), plan, made)) << text;
}

INSTANTIATE_TEST_SUITE_P(
    Plans, DeviationPlan,
    testing::Values(
        PlanRow{"Nothing", {}, {}, ""}, PlanRow{"Leaf", {{"soil", ""}}, {}, "no soil; "},
        PlanRow{
            "WholeContainer", {{"water/rate", ""}, {"water/timer", ""}, {"water/tank/litres", ""}}, {}, "no water; "},
        PlanRow{"PartOfContainer", {{"water/rate", ""}, {"water/tank/litres", ""}}, {}, "no rate; no tank; "},
        PlanRow{"ReadOnlyLeaf", {{"water/rate", "r"}}, {}, "read-only rate; "},
        PlanRow{"ReadOnlyContainer",
                {{"water/rate", "r"}, {"water/timer", "r"}, {"water/tank/litres", ""}},
                {},
                "read-only water; no tank; "},
        PlanRow{"FewerValues", {{"soil", "rs"}}, {"sand"}, "values soil; "},
        PlanRow{"DefaultRefused",
                {{"cover", "rs"}},
                {"none"},
                "refused /garden/bed/cover: its default 'none' is refused; "},
        PlanRow{"BooleanIsARemark", {{"heated", "rs"}}, {"false"}, ""},
        PlanRow{
            "Key", {{"name", ""}}, {}, "refused /garden/bed/name: cannot be removed: it is a key of '/garden/bed'; "},
        PlanRow{"Mandatory", {{"width", ""}}, {}, "refused /garden/bed/width: cannot be removed: it is mandatory; "},
        PlanRow{"TargetOfWhen",
                {{"heated", ""}},
                {},
                "refused /garden/bed/heated: cannot be removed: the when of '/garden/bed/warmth' looks at it; "},
        PlanRow{"TargetOfWhenOfChoice",
                {{"cover", ""}},
                {},
                "refused /garden/bed/cover: cannot be removed: the when of '/garden/bed/shelter' looks at it; "},
        PlanRow{"WhenGoesToo", {{"heated", ""}, {"warmth", ""}}, {}, "no heated; no warmth; "}),
    [](const auto &each) { return std::string(each.param.name); });

// Samples of an open text are not the texts that a mapping may know: what a delete does tells that it knows the leaf.
TEST(Deviations, DoNotJudgeOpenTextBySamples) {
  yfw::coverage made;
  const lysc_node *name = garden().find("/garden/bed/name", {});
  yfw::coverage_cell refused = made_cell(set, false);
  refused.probes.push_back({"a", {}, "refused"});
  made.high.push_back(
      {name, {made_cell(get_config, true), made_cell(get, true), refused, made_cell(remove_leaf, true)}});
  const yfw::deviations plan = plan_deviations(made, garden());
  EXPECT_EQ("", statements(plan));
  EXPECT_EQ(std::vector<std::string>{"/garden/bed/name: was set to 'a' only, which is refused"}, plan.remarks);
}

TEST(Drift, IsFoundBothWays) {
  const auto text_of = [](const yfw::coverage &made) {
    return deviation_module(plan_deviations(made, garden()), made, garden(), {"dev-garden", "urn:test:dev", ""});
  };
  const yfw::coverage made = garden_with({{"soil", ""}, {"water/rate", "r"}});
  const std::string stated = text_of(garden_with({{"warmth", ""}, {"water/rate", ""}}));
  EXPECT_EQ((std::vector<std::string>{"/garden/bed/soil: is not supported, but that is not stated",
                                      "/garden/bed/warmth: is stated as not supported, but is mapped",
                                      "/garden/bed/water/rate: is stated as not supported, but is read-only"}),
            drift(read_deviations(stated, "stated", garden()), plan_deviations(made, garden()), made));
}

TEST(Drift, OfRemarks) {
  const yfw::coverage made = garden_with({{"heated", "rs"}}, {"false"});
  const yfw::deviations plan = plan_deviations(made, garden());
  ASSERT_EQ(std::vector<std::string>{"/garden/bed/heated: cannot be set to 'false'"}, plan.remarks);
  EXPECT_EQ(std::vector<std::string>{plan.remarks[0] + ", but the description does not say so"}, drift({}, plan, made));
}

TEST(ReadDeviations, RefusesWhatNoMeasurementSpeaksFor) {
  const std::string text =
      "module m { namespace 'urn:m'; prefix m; import garden { prefix g; } deviation /g:garden/g:bed/g:soil { deviate "
      "add { default clay; } } }";
  try {
    (void)read_deviations(text, "m.yang", garden());
    FAIL() << "is taken";
  } catch (const yfw::error &refused) {
    EXPECT_EQ(
        "m.yang: /g:garden/g:bed/g:soil: has a deviate that no measurement speaks for; 'not-supported', 'config "
        "false' and a smaller 'type enumeration' are known",
        std::string(refused.what()));
  }
}

}  // namespace
