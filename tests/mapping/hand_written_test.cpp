// The hand-written mappings, called one by one: values in both directions, defaults, lookups.
#include "eth_manual_mappings.h"
#include "mapping_test.hpp"
#include "ymap_oc_ethernet_openconfig_if_ethernet.h"
#include "ymap_oc_ethernet_zemlo_quarn_drivers_media_eth_cfg.h"
#include "ymap_oc_ethernet_zemlo_quarn_drivers_media_eth_oper.h"

#include <cstddef>
#include <map>

using namespace support;

namespace {

using translator = const char *(yfw_ctx_t *, yfw_node_t *);

// `out` null: refused, with `error`.
struct value_row {
  const char *name;
  translator *translate;
  const char *in, *out;
  const char *error = "";
};

class Translation : public mapping_test, public testing::WithParamInterface<value_row> {
 protected:
  const char *translated() {
    return GetParam().translate(&ctx, tree(leaf("leaf", oc, GetParam().in)).root());
  }
};

TEST_P(Translation, Yields) {
  const char *result = translated();
  EXPECT_STREQ(result, GetParam().out);
  EXPECT_EQ(framework.calls, GetParam().error);
  EXPECT_EQ(translated(), result) << "not the same constant text";
}

constexpr translator *duplex_low = eth_drvr_duplex_enum_to_low, *duplex_high = eth_drvr_duplex_enum_to_high;
constexpr translator *speed_low = eth_drvr_speed_enum_to_low, *speed_high = eth_drvr_speed_enum_to_high;

const value_row value_rows[] = {
    {"FullToLow", duplex_low, "FULL", "full"},
    {"HalfToLow", duplex_low, "HALF", "half"},
    {"NativeFullToLow", duplex_low, "full", nullptr, "ERR Invalid duplex leaf value 'full' specified in high model\n"},
    {"NoDuplexToLow", duplex_low, nullptr, nullptr, "ERR Null duplex leaf specified in high model\n"},
    {"EmptyDuplexToLow", duplex_low, "", nullptr, "ERR Invalid duplex leaf value '' specified in high model\n"},
    {"FullToHigh", duplex_high, "full", "FULL"},
    {"HalfToHigh", duplex_high, "half", "HALF"},
    {"OpenConfigFullToHigh", duplex_high, "FULL", nullptr,
     "ERR Invalid duplex leaf value 'FULL' specified in low model\n"},
    {"NoDuplexToHigh", duplex_high, nullptr, nullptr, "ERR Null duplex leaf specified in low model\n"},
    {"TenMegabitToLow", speed_low, "SPEED_10MB", "10"},
    {"HundredMegabitToLow", speed_low, "SPEED_100MB", "100"},
    {"GigabitToLow", speed_low, "SPEED_1GB", "1000"},
    {"GigabitIdentityToLow", speed_low, "SPEED_1G", nullptr,
     "ERR Invalid speed leaf value 'SPEED_1G' specified in high model\n"},
    {"TenGigabitToLow", speed_low, "SPEED_10G", nullptr,
     "ERR Invalid speed leaf value 'SPEED_10G' specified in high model\n"},
    {"PrefixedSpeedToLow", speed_low, "openconfig-if-ethernet:SPEED_1GB", nullptr,
     "ERR Invalid speed leaf value 'openconfig-if-ethernet:SPEED_1GB' specified in high model\n"},
    {"NoSpeedToLow", speed_low, nullptr, nullptr, "ERR Null speed leaf specified in high model\n"},
    {"TenToHigh", speed_high, "10", "SPEED_10MB"},
    {"HundredToHigh", speed_high, "100", "SPEED_100MB"},
    {"ThousandToHigh", speed_high, "1000", "SPEED_1GB"},
    {"GigabitWordToHigh", speed_high, "one-gbps", "SPEED_1G"},
    {"TenGigabitToHigh", speed_high, "ten-gbps", "SPEED_10G"},
    {"TwentyFiveGigabitToHigh", speed_high, "twenty-five-gbps", "SPEED_25G"},
    {"FortyGigabitToHigh", speed_high, "forty-gbps", "SPEED_40G"},
    {"FiftyGigabitToHigh", speed_high, "fifty-gbps", "SPEED_50G"},
    {"HundredGigabitToHigh", speed_high, "hundred-gbps", "SPEED_100G"},
    {"TenMegabitWordToHigh", speed_high, "ten-mbps", "SPEED_10MB"},
    {"HundredMegabitWordToHigh", speed_high, "hundred-mbps", "SPEED_100MB"},
    {"CapitalToHigh", speed_high, "Ten-gbps", nullptr,
     "ERR Invalid speed leaf value 'Ten-gbps' specified in low model\n"},
    {"TrailingBlankToHigh", speed_high, "10 ", nullptr, "ERR Invalid speed leaf value '10 ' specified in low model\n"},
    {"TrailingDigitToHigh", speed_high, "10000", nullptr,
     "ERR Invalid speed leaf value '10000' specified in low model\n"},
    {"NoSpeedToHigh", speed_high, nullptr, nullptr, "ERR Null speed leaf specified in low model\n"},
};

INSTANTIATE_TEST_SUITE_P(Values, Translation, testing::ValuesIn(value_rows),
                         [](const auto &row) { return std::string(row.param.name); });

class HandWritten : public mapping_test {};

TEST_F(HandWritten, TranslationPassesOverAFailedComparison) {
  tree speed(leaf("speed", cfg, "10"));
  framework.failing_comparison = 1;
  framework.notes_comparisons = true;
  EXPECT_EQ(eth_drvr_speed_enum_to_high(&ctx, speed.root()), nullptr);
  EXPECT_EQ(framework.calls, R"(compare "10" 2 "10"
compare "100" 3 "10"
compare "1000" 4 "10"
compare "one-gbps" 8 "10"
compare "ten-gbps" 8 "10"
compare "twenty-five-gbps" 16 "10"
compare "forty-gbps" 10 "10"
compare "fifty-gbps" 10 "10"
compare "hundred-gbps" 12 "10"
compare "ten-mbps" 8 "10"
compare "hundred-mbps" 12 "10"
ERR Invalid speed leaf value '10' specified in low model
)");
}

struct leaf_row {
  const char *name;
  uint32_t request_operation, node_operation;
  const char *value;
  const char *expected;
};

std::string row_name(const testing::TestParamInfo<leaf_row> &row) {
  return row.param.name;
}

class LeafTest : public mapping_test, public testing::WithParamInterface<leaf_row> {
 protected:
  std::string answer_of(ymap_node_function *function) {
    request.operation = GetParam().request_operation;
    return answer(function, leaf("leaf", oc, GetParam().value).operation(GetParam().node_operation));
  }
};

class AutoNegotiateToNative : public LeafTest {};

TEST_P(AutoNegotiateToNative, ConfigLeaf) {
  EXPECT_EQ(answer_of(ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_config_autonegotiate),
            GetParam().expected);
}

TEST_P(AutoNegotiateToNative, StateLeaf) {
  EXPECT_EQ(answer_of(ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_state_autonegotiate),
            GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Values, AutoNegotiateToNative,
    testing::Values(leaf_row{"ReadConfiguration", 0, 3, "no boolean", R"(
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation flag 1
status 0
)"},
                    leaf_row{"ReadAll", 10, 0, nullptr, R"(
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation flag 1
status 0
)"},
                    leaf_row{"True", 1, 0, "true", R"(
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation "override" from leaf/0 flag 1
status 0
)"},
                    leaf_row{"False", 1, 2, "false", R"(
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation from leaf/4 and tell flag 1
status 0
~leaf operation=4 flags=10
)"},
                    leaf_row{"OtherRequestOperation", 11, 0, "true", R"(
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation "override" from leaf/0 flag 1
status 0
)"},
                    leaf_row{"Delete", 1, 3, "false", R"(
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation "override" from leaf/3 flag 1
status 0
~output operation=2 flags=10
)"},
                    leaf_row{"Remove", 1, 4, nullptr, R"(
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation "override" from leaf/4 flag 1
status 0
~output operation=2 flags=10
)"},
                    leaf_row{"Capitals", 1, 0, "TRUE", "\nERR Invalid input value 'TRUE'\nstatus INVALID_VALUE\n"},
                    leaf_row{"NoValue", 1, 0, nullptr, "\nERR Invalid input value '<null>'\nstatus INVALID_VALUE\n"}),
    row_name);

class FlowControlToNative : public LeafTest {};

TEST_P(FlowControlToNative, ConfigLeaf) {
  EXPECT_EQ(answer_of(ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_config_enableflowcontrol),
            GetParam().expected);
}

TEST_P(FlowControlToNative, StateLeaf) {
  EXPECT_EQ(answer_of(ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_state_enableflowcontrol),
            GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Values, FlowControlToNative,
    testing::Values(leaf_row{"Read", 10, 0, "no boolean", R"(
add cfg:/interface-configurations/interface-configuration/ethernet/flow-control flag 1
status 0
)"},
                    leaf_row{"True", 1, 1, "true", R"(
add cfg:/interface-configurations/interface-configuration/ethernet/flow-control "bidirectional" from leaf/1 flag 1
status 0
)"},
                    leaf_row{"False", 1, 0, "false", R"(
add cfg:/interface-configurations/interface-configuration/ethernet/flow-control from leaf/3 flag 1
status 0
~leaf operation=3 flags=10
)"},
                    leaf_row{"Delete", 1, 3, "true", R"(
add cfg:/interface-configurations/interface-configuration/ethernet/flow-control from leaf/3 flag 1
status 0
)"},
                    leaf_row{"Number", 1, 0, "1", "\nERR Invalid input value '1'\nstatus INVALID_VALUE\n"},
                    leaf_row{"NoValue", 1, 0, nullptr, "\nERR Invalid input value '<null>'\nstatus INVALID_VALUE\n"}),
    row_name);

// The failure of a flow-control delete is the caller's; that of an auto-negotiation delete is forgiven, and a node that
// was created all the same becomes a removal.
TEST_F(HandWritten, FailedDeletes) {
  request.operation = 1;
  framework.logs_traces = true;
  framework.add_status = {{1, 0xaaf20001}, {2, 0xaaf20002}, {3, 0xaaf20003}};
  tree first(leaf("leaf", oc, "false"));
  EXPECT_EQ(
      ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_config_autonegotiate(&ctx, first.root(), &out),
      0U);
  EXPECT_EQ(framework.calls, R"(TRC Start
TRC XXXXX Delete auto-neg item XXXXX
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation from leaf/4 and tell flag 1
TRC Failed to delete auto-neg item, perhaps it didn't exist
TRC End
)");
  EXPECT_EQ(framework.created.operation, 4U);
  EXPECT_EQ(framework.created.flags, 0x10U);

  framework.creates_node = false;
  framework.created = {};
  tree second(leaf("leaf", oc, "false"));
  EXPECT_EQ(
      ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_config_autonegotiate(&ctx, second.root(), &out),
      0U);
  EXPECT_EQ(framework.created.operation, 0U);

  tree third(leaf("leaf", oc, "false"));
  EXPECT_EQ(ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_config_enableflowcontrol(&ctx, third.root(),
                                                                                                     &out),
            0xaaf20003U);
}

class NativeAutoNegotiation : public LeafTest {};

TEST_P(NativeAutoNegotiation, Answers) {
  EXPECT_EQ(answer_of(ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_man_leaf_lvla_ethernet_autonegotiation),
            GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Values, NativeAutoNegotiation,
    testing::Values(leaf_row{"Override", 10, 0, "override", "\nstatus 0\n"},
                    leaf_row{"True", 0, 0, "true", "\nERR Unmappable input value 'true'\nstatus 0\n"},
                    leaf_row{"Other", 0, 0, "on", "\nERR Invalid input value 'on'\nstatus INVALID_VALUE\n"},
                    leaf_row{"NoValue", 10, 0, nullptr, "\nERR Invalid input value '<null>'\nstatus INVALID_VALUE\n"},
                    leaf_row{"Write", 1, 0, "on", "\nstatus 0\n"}),
    row_name);

class NativeFlowControl : public LeafTest {};

TEST_P(NativeFlowControl, Answers) {
  EXPECT_EQ(answer_of(ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_man_leaf_lvla_ethernet_flowcontrol),
            GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Values, NativeFlowControl,
    testing::Values(
        leaf_row{"Ingress", 0, 0, "ingress", "\nERR Unmappable input value 'ingress'\nstatus INVALID_VALUE\n"},
        leaf_row{"Egress", 10, 0, "egress", "\nERR Unmappable input value 'egress'\nstatus INVALID_VALUE\n"},
        leaf_row{"Other", 10, 0, "both", "\nERR Invalid input value 'both'\nstatus INVALID_VALUE\n"},
        leaf_row{"NoValue", 0, 0, nullptr, "\nERR Invalid input value '<null>'\nstatus INVALID_VALUE\n"},
        leaf_row{"Write", 1, 0, "bidirectional", "\nstatus 0\n"}),
    row_name);

struct defaults_row {
  const char *name;
  uint32_t operation, item_status;
  bool state_only;
  const char *expected;
};

class InterfaceDefaults : public mapping_test, public testing::WithParamInterface<defaults_row> {};

TEST_P(InterfaceDefaults, Reports) {
  request.operation = GetParam().operation;
  framework.item_status = GetParam().item_status;
  if (GetParam().state_only) {
    record.selection_1625 = 0x10;
    record.selection_mode = 2;
  }
  EXPECT_EQ(ymap_xo_oc_ethernet_get_interface_defaults(nullptr, &ctx, nullptr, &out), 0U);
  EXPECT_EQ(framework.calls, "item /interface-configurations/interface-configuration ethernet auto-negotiation\n" +
                                 std::string(GetParam().expected));
}

constexpr const char *default_config = "add oc:/interfaces/interface/ethernet/config/auto-negotiate \"false\" flag 1\n";
constexpr const char *default_state = "add oc:/interfaces/interface/ethernet/state/auto-negotiate \"false\" flag 1\n";
const std::string default_both = std::string(default_config) + default_state;

INSTANTIATE_TEST_SUITE_P(Rows, InterfaceDefaults,
                         testing::Values(defaults_row{"ItemPresent", 10, 0, false, ""},
                                         defaults_row{"AbsentReadAll", 10, 1, false, default_both.c_str()},
                                         defaults_row{"AbsentReadConfiguration", 0, 1, false, default_config},
                                         defaults_row{"AbsentWrite", 1, 0xaaf2ec00, false, default_config},
                                         defaults_row{"AbsentStateOnly", 10, 1, true, default_state},
                                         defaults_row{"AbsentNothingWanted", 0, 1, true, ""}),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(HandWritten, DefaultsReturnTheFirstFailure) {
  framework.item_status = 1;
  framework.add_status = {{1, 0xaaf20001}, {2, 0xaaf20002}};
  EXPECT_EQ(ymap_xo_oc_ethernet_get_interface_defaults(nullptr, &ctx, nullptr, &out), 0xaaf20001U);
  EXPECT_EQ(framework.adds, 2U);
}

TEST_F(HandWritten, CreatingAnInterfaceSwitchesAutoNegotiationOn) {
  tree interface(leaf("interface", oc_if).operation(2));
  framework.add_status[1] = 0xaaf20001;
  const uint32_t status = ymap_ox_oc_ethernet_interface_create_defaults(nullptr, &ctx, interface.root(), &out);
  EXPECT_EQ(answer(status, interface), R"(
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation "override" from interface/2 flag 1
status aaf20001
)");
}

// Every bit of the record's selection bytes, with mode 2: the 28 flags alone make config leaves unwanted.
TEST_F(HandWritten, ConfigLeavesAreUnwantedForEachSelectionFlag) {
  const std::map<size_t, uint8_t> flags = {{1172, 0x07}, {1216, 0x03}, {1240, 0x03}, {1248, 0x07}, {1272, 0xff},
                                           {1273, 0x1f}, {1280, 0x03}, {1292, 0x03}, {1625, 0x10}};
  size_t unwanted_for = 0;
  for (size_t byte = 48; byte < sizeof record; ++byte) {
    if (byte >= 1288 && byte < 1292) {
      continue;  // the mode
    }
    for (uint32_t bit = 1; bit <= 0x80; bit <<= 1) {
      record = {};
      record.selection_mode = 2;
      reinterpret_cast<uint8_t *>(&record)[byte] = static_cast<uint8_t>(bit);
      const auto flag = flags.find(byte);
      const bool is_flag = flag != flags.end() && (flag->second & bit) != 0;
      EXPECT_EQ(eth_oc_config_leaf_wanted(&record), !is_flag) << byte << " " << bit;
      unwanted_for += is_flag ? 1 : 0;
      for (const uint32_t mode : {0U, 1U, 3U, 0x102U}) {
        record.selection_mode = mode;
        EXPECT_TRUE(eth_oc_config_leaf_wanted(&record)) << byte << " " << bit << " mode " << mode;
      }
    }
  }
  EXPECT_EQ(unwanted_for, 28U);
}

// How the interface's name is found, and what becomes of a failure.
struct lookup_row {
  const char *name;
  uint32_t operation, in_progress, status;
  bool has_entry;
  const char *expected;
};

class InterfaceName : public mapping_test, public testing::WithParamInterface<lookup_row> {};

TEST_P(InterfaceName, SelectsTheStatisticsEntry) {
  request.operation = GetParam().operation;
  record.expansion_in_progress = GetParam().in_progress;
  framework.key_status = framework.stack_status = GetParam().status;
  yfw_node_t key = leaf("name", oc_if, "Eth7").fields;
  yfw_itree_entry_t entry{&key};
  framework.stack_entry = GetParam().has_entry ? &entry : nullptr;
  tree counters(node("counters", oc));
  const uint32_t status =
      ymap_ox_oc_ethernet_openconfigifethernet_cont_lvla_ethernet_state_counters(&ctx, counters.root(), 7, &out);
  EXPECT_EQ(framework.calls + "status " + status_name(status), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, InterfaceName,
    testing::Values(lookup_row{"Hierarchy", 10, 0, 0, true, R"(key /interfaces/interface name
add oper:/ethernet-interface/statistics/statistic/interface-name "Eth0" flag 0
status 0)"},
                    lookup_row{"OtherProgressValue", 0, 2, 0, true, R"(key /interfaces/interface name
add oper:/ethernet-interface/statistics/statistic/interface-name "Eth0" flag 0
status 0)"},
                    lookup_row{"HierarchyFails", 10, 0, 0xaaf20001, true, R"(key /interfaces/interface name
add oper:/ethernet-interface/statistics/statistic/interface-name flag 0
status 0)"},
                    lookup_row{"Stack", 10, 1, 0x1fffffff, true, R"(stack 1
add oper:/ethernet-interface/statistics/statistic/interface-name "Eth7" flag 0
status 0)"},
                    lookup_row{"StackFails", 10, 1, 0x20000000, true, R"(stack 1
add oper:/ethernet-interface/statistics/statistic/interface-name flag 0
status 0)"},
                    lookup_row{"StackWithoutEntry", 10, 1, 0, false, R"(stack 1
add oper:/ethernet-interface/statistics/statistic/interface-name flag 0
status 0)"},
                    lookup_row{"WriteReturnsTheLookup", 1, 0, 0xaaf20001, true, R"(key /interfaces/interface name
status aaf20001)"},
                    lookup_row{"WriteUnderExpansion", 1, 1, 5, true, "stack 1\nstatus 5"}),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(HandWritten, EffectiveSpeedAsksForTheNativeSpeed) {
  EXPECT_EQ(answer(ymap_ox_oc_ethernet_openconfigifethernet_leaf_lvla_ethernet_state_effectivespeed,
                   leaf("effective-speed", oc)),
            R"(
key /interfaces/interface name
add oper:/ethernet-interface/interfaces/interface/layer1-info/speed flag 0
status 0
)");
}

// Whoever calls them may hand them nothing: they say so and touch nothing.
TEST_F(HandWritten, MissingArgumentsAreRefused) {
  ymap_node_function *const functions[] = {
      ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_list_lvla_ethernetinterface_statistics_statistic,
      ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_list_lvla_ethernetinterface_interfaces_interface,
      ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_leaf_lvla_ethernetinterface_layer1info_speed,
      ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_man_leaf_lvla_ethernet_autonegotiation,
      ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_man_leaf_lvla_ethernet_flowcontrol,
      ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_config_autonegotiate,
      ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_state_autonegotiate,
      ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_config_enableflowcontrol,
      ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_state_enableflowcontrol,
      ymap_ox_oc_ethernet_openconfigifethernet_leaf_lvla_ethernet_state_effectivespeed,
      ymap_ox_oc_ethernet_openconfigifethernet_leaf_lvla_ethernet_state_hwmacaddress,
      ymap_ox_oc_ethernet_openconfigifethernet_lvla_ethernet_config_parse_augments,
      [](yfw_ctx_t *context, yfw_node_t *node, yfw_node_t *output) {
        return ymap_ox_oc_ethernet_openconfigifethernet_cont_lvla_ethernet_state_counters(context, node, 1, output);
      },
  };
  tree node(leaf("leaf", oc, "1"));
  for (const auto &function : functions) {
    EXPECT_EQ(function(&ctx, nullptr, &out), 0xaaf2a000U);
    EXPECT_EQ(function(&ctx, node.root(), nullptr), 0xaaf2a000U);
    EXPECT_EQ(framework.calls, "ERR Invalid arguments passed!\nERR Invalid arguments passed!\n");
    framework.calls.clear();
  }
}

}  // namespace
