// The measured coverage of the shipped mapping, and the deviations that follow from sample measurements.
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
#include "yfw/trace.hpp"

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
  bool is_client;
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
  EXPECT_EQ(row.expected,
            summary(cell(row.is_client ? measured().client : measured().native, row.path, row.operation)));
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
                    CellRow{"RejectedIdentities", true, "config/port-speed", set, "partial speed"},
                    CellRow{"StateIsRead", true, "state/hw-mac-address", get, "mapped burned-in-mac-address"},
                    CellRow{"StateIsNotSet", true, "state/mac-address", set, "rejected"},
                    CellRow{"NotMapped", true, "in-mac-control-frames", get, "rejected"},
                    CellRow{"RejectedTag", true, "state/effective-speed", get, "rejected"},
                    CellRow{"KeyOfUnservedList", true, "interface/name", get, "not counted"},
                    CellRow{"OneReport", false, "ethernet/duplex", get_config, "mapped duplex-mode"},
                    CellRow{"TwoReports", false, "ethernet/duplex", get, "multiple duplex-mode duplex-mode"},
                    CellRow{"AbsenceIsReported", false, "auto-negotiation", get_config, "partial auto-negotiate"},
                    CellRow{"Ignored", false, "ethernet/loopback", get, "unmapped"}),
    [](const auto &each) { return std::string(each.param.name); });

TEST(Coverage, HasTheValuesThatReachThePath) {
  std::vector<std::string> accepted;
  for (const yfw::leaf_probe &probe : cell(measured().client, "config/port-speed", set)->probes) {
    if (probe.is_mapped()) {
      accepted.push_back(*probe.value + "=" + probe.effects.front().value.value_or(""));
    }
  }
  EXPECT_EQ((std::vector<std::string>{"SPEED_10MB=10", "SPEED_100MB=100", "SPEED_1GB=1000"}), accepted);
}

TEST(Coverage, CountsOnlyWhatTheModelAllows) {
  const yfw::coverage_share share = share_of(measured().client, set);
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

// ---- deviations, of the model of a garden with a sample mapping

const yfw::schema &garden() {
  static const yfw::schema schema = yfw::schema::load({YFW_TEST_DATA "/garden"});
  return schema;
}

yfw::coverage_cell sample_cell(leaf_operation operation, bool is_mapped) {
  return {operation, true, is_mapped ? mapping_state::mapped : mapping_state::rejected, {}, {}};
}

// Every leaf of the garden is mapped, except those named: "" not at all, "r" reads, "s" a set of some values.
yfw::coverage garden_with(const std::map<std::string, std::string> &exceptions,
                          const std::vector<std::string> &rejected = {}) {
  yfw::coverage measurement;
  for (const char *leaf : {"name", "soil", "cover", "width", "heated", "warmth", "neighbour", "hut", "water/rate",
                           "water/timer", "water/tank/litres"}) {
    const auto found = exceptions.find(leaf);
    const std::string what = found == exceptions.end() ? "rs" : found->second;
    const bool is_read = what.find('r') != what.npos;
    const bool is_set = what.find('s') != what.npos;
    const lysc_node *node = garden().find(std::string("/garden/bed/") + leaf, {});
    measurement.client.push_back({node,
                                  {sample_cell(get_config, is_read), sample_cell(get, is_read),
                                   sample_cell(set, is_set), sample_cell(remove_leaf, is_set)}});
    if (found != exceptions.end() && is_set) {
      yfw::coverage_cell &cell = measurement.client.back().cells[2];
      cell.state = mapping_state::partial;
      for (const std::string &value : garden().allowed_values(node)) {
        const bool is_rejected = std::find(rejected.begin(), rejected.end(), value) != rejected.end();
        cell.probes.push_back({value, {{yfw::effect_kind::set, node, value}}, is_rejected ? "rejected" : ""});
      }
    }
  }
  return measurement;
}

std::string statements(const yfw::deviations &plan) {
  std::string text;
  for (const yfw::deviation &each : plan.statements) {
    constexpr const char *kinds[] = {"no ", "read-only ", "values "};
    text += kinds[static_cast<size_t>(each.kind)] + std::string(yfw::name(each.target)) + "; ";
  }
  for (const std::string &rejected : plan.rejected) {
    text += "rejected " + rejected + "; ";
  }
  return text;
}

struct PlanRow {
  const char *name;
  std::map<std::string, std::string> exceptions;
  std::vector<std::string> rejected;
  const char *expected;
};

void PrintTo(const PlanRow &row, std::ostream *out) {
  *out << row.name;
}

class DeviationPlan : public testing::TestWithParam<PlanRow> {};

// The module is valid together with the modules in force, and reading it back finds no drift.
TEST_P(DeviationPlan, IsSmallAndTrue) {
  const yfw::coverage measurement = garden_with(GetParam().exceptions, GetParam().rejected);
  const yfw::deviations plan = plan_deviations(measurement, garden());
  EXPECT_EQ(GetParam().expected, statements(plan));
  const std::string text = deviation_module(plan, measurement, garden(), {"garden-deviations", "urn:test:dev", ""});
  EXPECT_EQ(std::vector<std::string>{}, drift(read_deviations(text, "written", garden()), plan, measurement)) << text;
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
        PlanRow{"DefaultRejected",
                {{"cover", "rs"}},
                {"none"},
                "rejected /garden/bed/cover: its default 'none' is rejected; "},
        PlanRow{"BooleanIsARemark", {{"heated", "rs"}}, {"false"}, ""},
        PlanRow{
            "Key", {{"name", ""}}, {}, "rejected /garden/bed/name: cannot be removed: it is a key of '/garden/bed'; "},
        PlanRow{"Mandatory", {{"width", ""}}, {}, "rejected /garden/bed/width: cannot be removed: it is mandatory; "},
        PlanRow{"TargetOfWhen",
                {{"heated", ""}},
                {},
                "rejected /garden/bed/heated: cannot be removed: the when of '/garden/bed/warmth' refers to it; "},
        PlanRow{"TargetOfWhenOfChoice",
                {{"cover", ""}},
                {},
                "rejected /garden/bed/cover: cannot be removed: the when of '/garden/bed/shelter' refers to it; "},
        PlanRow{"WhenGoesToo", {{"heated", ""}, {"warmth", ""}}, {}, "no heated; no warmth; "}),
    [](const auto &each) { return std::string(each.param.name); });

// Samples of a string say nothing about the strings that a mapping accepts: a delete shows that it knows the leaf.
TEST(Deviations, DoNotJudgeStringsBySamples) {
  yfw::coverage measurement;
  const lysc_node *name = garden().find("/garden/bed/name", {});
  yfw::coverage_cell set_cell = sample_cell(set, false);
  set_cell.probes.push_back({"a", {}, "rejected"});
  measurement.client.push_back(
      {name, {sample_cell(get_config, true), sample_cell(get, true), set_cell, sample_cell(remove_leaf, true)}});
  const yfw::deviations plan = plan_deviations(measurement, garden());
  EXPECT_EQ("", statements(plan));
  EXPECT_EQ(std::vector<std::string>{"/garden/bed/name: was set to 'a' only, which is rejected"}, plan.remarks);
}

TEST(Drift, IsFoundBothWays) {
  const auto text_of = [](const yfw::coverage &measurement) {
    return deviation_module(plan_deviations(measurement, garden()), measurement, garden(),
                            {"dev-garden", "urn:test:dev", ""});
  };
  const yfw::coverage measurement = garden_with({{"soil", ""}, {"water/rate", "r"}});
  const std::string stated = text_of(garden_with({{"warmth", ""}, {"water/rate", ""}}));
  EXPECT_EQ((std::vector<std::string>{"/garden/bed/soil: is not supported, but not stated so",
                                      "/garden/bed/warmth: stated as not supported, but is mapped",
                                      "/garden/bed/water/rate: stated as not supported, but is read-only"}),
            drift(read_deviations(stated, "stated", garden()), plan_deviations(measurement, garden()), measurement));
}

TEST(Drift, OfRemarks) {
  const yfw::coverage measurement = garden_with({{"heated", "rs"}}, {"false"});
  const yfw::deviations plan = plan_deviations(measurement, garden());
  ASSERT_EQ(std::vector<std::string>{"/garden/bed/heated: cannot be set to 'false'"}, plan.remarks);
  EXPECT_EQ(std::vector<std::string>{plan.remarks[0] + ": measured, but not stated"}, drift({}, plan, measurement));
}

TEST(ReadDeviations, RejectsOtherDeviates) {
  const std::string text =
      "module m { namespace 'urn:m'; prefix m; import garden { prefix g; } deviation /g:garden/g:bed/g:soil { deviate "
      "add { default clay; } } }";
  try {
    (void)read_deviations(text, "m.yang", garden());
    FAIL() << "is accepted";
  } catch (const yfw::error &failure) {
    EXPECT_EQ(
        "m.yang: /g:garden/g:bed/g:soil: unsupported deviate, expected 'not-supported', 'config false' or a smaller "
        "'type "
        "enumeration'",
        std::string(failure.what()));
  }
}

}  // namespace
