// Whole native replies, operational and configuration, walked from their entry points.
#include "mapping_test.hpp"

#include "ymap_oc_ethernet_zemlo_quarn_drivers_media_eth_cfg.h"
#include "ymap_oc_ethernet_zemlo_quarn_drivers_media_eth_oper.h"
#include "ymap_oc_ethernet_zemlo_quarn_mdrv_lib_cfg.h"

using namespace support;

namespace {

constexpr auto *oper_entry = &ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface;
constexpr auto *cfg_entry = &ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_augment_lvla_interface_configuration;
constexpr auto *lib_entry = &ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_augment_lvla_interface_configuration;

class OperationalReply : public mapping_test {};

description statistics(std::vector<description> entries) {
  return node("ethernet-interface", oper, {node("statistics", oper, std::move(entries))});
}

description statistic(const char *name, std::vector<description> counters = {}) {
  counters.insert(counters.begin(), leaf("interface-name", oper, name));
  return node("statistic", oper, std::move(counters));
}

description interface(const char *name, std::vector<description> containers) {
  containers.insert(containers.begin(), leaf("interface-name", oper, name));
  return node("ethernet-interface", oper, {node("interfaces", oper, {node("interface", oper, std::move(containers))})});
}

TEST_F(OperationalReply, MapsCountersAndSkipsEntriesWithoutCounterpart) {
  framework.list_status["Eth1"] = YMAP_ERR_NO_MATCH;
  EXPECT_EQ(
      answer(oper_entry, statistics({statistic("Eth0", {leaf("transmitted-total-pause-frames", oper, "1"),
                                                        leaf("rfc2819-ether-stats-jabbers", oper, "9"),
                                                        leaf("received8021q-frames", oper, "2"),
                                                        leaf("received-pause-frames", oper, "3"),
                                                        leaf("dropped-giant-packets-greaterthan-mru", oper, "4")}),
                                     statistic("Eth1", {leaf("received8021q-frames", oper, "5")}),
                                     statistic("Eth2", {leaf("dropped-jabbers-packets-greaterthan-mru", oper, "6"),
                                                        leaf("dropped-ether-stats-fragments", oper, "7"),
                                                        leaf("dropped-packets-with-crc-align-errors", oper, ""),
                                                        leaf("transmitted8021q-frames", oper)})})),
      R"(
push ethernet-interface 1
push statistics 1
push statistic 2
current /ethernet-interface/statistics/statistic
key /ethernet-interface/statistics/statistic interface-name
list oc_if:/interfaces/interface name="Eth0"
register statistic
add oc:/interfaces/interface/ethernet/state/counters/out-mac-pause-frames "1" flag 1
add oc:/interfaces/interface/ethernet/state/counters/in-8021q-frames "2" flag 1
add oc:/interfaces/interface/ethernet/state/counters/in-mac-pause-frames "3" flag 1
add oc:/interfaces/interface/ethernet/state/counters/in-oversize-frames "4" flag 1
pop statistic
unregister statistic
push statistic 2
current /ethernet-interface/statistics/statistic
key /ethernet-interface/statistics/statistic interface-name
list oc_if:/interfaces/interface name="Eth1"
pop statistic
push statistic 2
current /ethernet-interface/statistics/statistic
key /ethernet-interface/statistics/statistic interface-name
list oc_if:/interfaces/interface name="Eth2"
register statistic
add oc:/interfaces/interface/ethernet/state/counters/in-jabber-frames "6" flag 1
add oc:/interfaces/interface/ethernet/state/counters/in-fragment-frames "7" flag 1
add oc:/interfaces/interface/ethernet/state/counters/in-crc-errors "" flag 1
add oc:/interfaces/interface/ethernet/state/counters/out-8021q-frames flag 1
pop statistic
unregister statistic
pop statistics
pop ethernet-interface
status 0
)");
}

// "speed" is mapped under layer1-info, ignored under autoneg; of the addresses, only the burned-in one is mapped.
TEST_F(OperationalReply, MapsSpeedAndAddressOfAnInterface) {
  EXPECT_EQ(answer(oper_entry, interface("Eth0", {node("layer1-info", oper,
                                                       {node("autoneg", oper, {leaf("speed", oper, "ten-gbps")}),
                                                        leaf("speed", oper, "hundred-gbps"),
                                                        leaf("speed", oper, "fast"), leaf("duplex", oper, "full")}),
                                                  node("mac-info", oper,
                                                       {leaf("operational-mac-address", oper, "a"),
                                                        leaf("burned-in-mac-address", oper, "b")})})),
            R"(
push ethernet-interface 1
push interfaces 1
push interface 2
current /ethernet-interface/interfaces/interface
key /ethernet-interface/interfaces/interface interface-name
list oc_if:/interfaces/interface name="Eth0"
register interface
push layer1-info 1
push autoneg 1
pop autoneg
add oc:/interfaces/interface/ethernet/state/effective-speed "SPEED_100G" flag 1
ERR Invalid speed leaf value 'fast' specified in low model
add oc:/interfaces/interface/ethernet/state/effective-speed flag 1
pop layer1-info
push mac-info 1
add oc:/interfaces/interface/ethernet/state/hw-mac-address "b" flag 1
pop mac-info
pop interface
unregister interface
pop interfaces
pop ethernet-interface
status 0
)");
}

TEST_F(OperationalReply, WalksListsInsideAnInterface) {
  const description lane = node("lane", oper, {leaf("center-wavelength", oper, "1")});
  const description filter = node("multicast-mac-address", oper, {leaf("mask", oper, "ff")});
  EXPECT_EQ(
      answer(oper_entry, interface("Eth0", {node("phy-info", oper, {node("phy-details", oper, {lane})}),
                                            node("mac-info", oper, {node("multicast-mac-filters", oper, {filter})})})),
      R"(
push ethernet-interface 1
push interfaces 1
push interface 2
current /ethernet-interface/interfaces/interface
key /ethernet-interface/interfaces/interface interface-name
list oc_if:/interfaces/interface name="Eth0"
register interface
push phy-info 1
push phy-details 1
push lane 2
current /ethernet-interface/interfaces/interface/phy-info/phy-details/lane
register lane
pop lane
unregister lane
pop phy-details
pop phy-info
push mac-info 1
push multicast-mac-filters 1
push multicast-mac-address 2
current /ethernet-interface/interfaces/interface/mac-info/multicast-mac-filters/multicast-mac-address
register multicast-mac-address
pop multicast-mac-address
unregister multicast-mac-address
pop multicast-mac-filters
pop mac-info
pop interface
unregister interface
pop interfaces
pop ethernet-interface
status 0
)");
}

TEST_F(OperationalReply, EntryWithoutKeysIsReportedAndStillHandled) {
  EXPECT_EQ(answer(oper_entry, statistics({node("statistic", oper)})), R"(
push ethernet-interface 1
push statistics 1
ERR No keys specified with a list node.
push statistic 2
current /ethernet-interface/statistics/statistic
key /ethernet-interface/statistics/statistic interface-name
list oc_if:/interfaces/interface name=(null)
register statistic
pop statistic
unregister statistic
pop statistics
pop ethernet-interface
status 0
)");
}

TEST_F(OperationalReply, EntryWhoseListCannotBeMadeCurrentIsStillRegistered) {
  framework.current_status["/ethernet-interface/berts/bert"] = 0xaaf20007;
  EXPECT_EQ(answer(oper_entry,
                   node("ethernet-interface", oper,
                        {node("berts", oper,
                              {node("bert", oper, {leaf("interface-name", oper, "Eth0")}), node("bert", oper)})})),
            R"(
push ethernet-interface 1
push berts 1
push bert 2
current /ethernet-interface/berts/bert
register bert
pop bert
unregister bert
pop berts
pop ethernet-interface
status aaf20007
)");
}

TEST_F(OperationalReply, NoMatchFromAnyCallOfAnEntryIsForgiven) {
  framework.current_status["/ethernet-interface/berts/bert"] = YMAP_ERR_NO_MATCH;
  framework.add_status[1] = YMAP_ERR_NO_MATCH;
  EXPECT_EQ(answer(oper_entry, node("ethernet-interface", oper,
                                    {node("berts", oper, {node("bert", oper, {leaf("time-left", oper, "1")})}),
                                     node("statistics", oper,
                                          {statistic("Eth0", {leaf("received8021q-frames", oper, "1"),
                                                              leaf("received-pause-frames", oper, "2")})})})),
            R"(
push ethernet-interface 1
push berts 1
push bert 2
current /ethernet-interface/berts/bert
register bert
pop bert
unregister bert
pop berts
push statistics 1
push statistic 2
current /ethernet-interface/statistics/statistic
key /ethernet-interface/statistics/statistic interface-name
list oc_if:/interfaces/interface name="Eth0"
register statistic
add oc:/interfaces/interface/ethernet/state/counters/in-8021q-frames "1" flag 1
pop statistic
unregister statistic
pop statistics
pop ethernet-interface
status 0
)");
}

TEST_F(OperationalReply, FailureEndsTheWalkAndUndoesWhatWasOpened) {
  framework.add_status[1] = 0xaaf20008;
  EXPECT_EQ(answer(oper_entry, statistics({statistic("Eth0", {leaf("received8021q-frames", oper, "1"),
                                                              leaf("received-pause-frames", oper, "2")}),
                                           statistic("Eth1")})),
            R"(
push ethernet-interface 1
push statistics 1
push statistic 2
current /ethernet-interface/statistics/statistic
key /ethernet-interface/statistics/statistic interface-name
list oc_if:/interfaces/interface name="Eth0"
register statistic
add oc:/interfaces/interface/ethernet/state/counters/in-8021q-frames "1" flag 1
pop statistic
unregister statistic
pop statistics
pop ethernet-interface
status aaf20008
)");
}

TEST_F(OperationalReply, FailedKeyLookupEndsTheWalk) {
  framework.key_status = 0xaaf20009;
  EXPECT_EQ(answer(oper_entry, statistics({statistic("Eth0"), statistic("Eth1")})), R"(
push ethernet-interface 1
push statistics 1
push statistic 2
current /ethernet-interface/statistics/statistic
key /ethernet-interface/statistics/statistic interface-name
register statistic
pop statistic
unregister statistic
pop statistics
pop ethernet-interface
status aaf20009
)");
}

// The framework's count has eight bits: from 255 it goes to 0, which is not greater.
TEST_F(OperationalReply, EntryIsNotUnregisteredWhenTheCountDidNotRise) {
  record.output_list_count = 255;
  EXPECT_EQ(answer(oper_entry, node("ethernet-interface", oper,
                                    {node("berts", oper, {node("bert", oper, {leaf("time-left", oper, "1")})})})),
            R"(
push ethernet-interface 1
push berts 1
push bert 2
current /ethernet-interface/berts/bert
register bert
pop bert
pop berts
pop ethernet-interface
status 0
)");
}

TEST_F(OperationalReply, IsIgnoredUnlessStateIsRead) {
  for (const uint32_t operation : {0U, 1U}) {
    request.operation = operation;
    framework.calls.clear();
    EXPECT_EQ(answer(oper_entry, statistics({statistic("Eth0", {leaf("received8021q-frames", oper, "1")})})),
              "\npush ethernet-interface 1\npop ethernet-interface\nstatus 0\n");
  }
}

TEST_F(OperationalReply, NearMissesAndForeignNodesAreIgnored) {
  EXPECT_EQ(answer(oper_entry, node("whatever", foreign,
                                    {node("statistic", oper, {leaf("interface-name", oper, "Eth0")}),
                                     node("statistics", foreign, {leaf("Statistic", oper), leaf("statistic", nullptr)}),
                                     node("mac-info", foreign, {leaf(nullptr, foreign)}),
                                     node("interfaces", oper).without_flag()})),
            R"(
push whatever 1
push statistics 1
ERR No keys specified with a list node.
push statistic 2
current /ethernet-interface/statistics/statistic
key /ethernet-interface/statistics/statistic interface-name
list oc_if:/interfaces/interface name=(null)
register statistic
pop statistic
unregister statistic
pop statistics
push interfaces 1
pop interfaces
pop whatever
status 0
)");
}

TEST_F(OperationalReply, NullTagsAndMissingArraysAreMalformed) {
  EXPECT_EQ(answer(oper_entry,
                   statistics({statistic("Eth0", {leaf("received8021q-frames", oper, "1"), leaf(nullptr, oper)})})),
            R"(
push ethernet-interface 1
push statistics 1
push statistic 2
current /ethernet-interface/statistics/statistic
key /ethernet-interface/statistics/statistic interface-name
list oc_if:/interfaces/interface name="Eth0"
register statistic
add oc:/interfaces/interface/ethernet/state/counters/in-8021q-frames "1" flag 1
ERR Tag name is not available!
pop statistic
unregister statistic
pop statistics
pop ethernet-interface
status BAD_TREE
)");
  framework.calls.clear();
  EXPECT_EQ(answer(oper_entry, statistics({node("statistic", oper).without_array()})), R"(
push ethernet-interface 1
push statistics 1
ERR Failed to get subtrees!
pop statistics
pop ethernet-interface
status BAD_TREE
)");
  framework.calls.clear();
  EXPECT_EQ(answer(oper_entry, node("ethernet-interface", oper).without_array()),
            "\nERR Failed to get subtrees!\nstatus BAD_TREE\n");
}

class ConfigurationReply : public mapping_test {
 protected:
  std::string answer_to(uint32_t operation, const description &native) {
    request.operation = operation;
    return answer(native.fields.ns == lib ? lib_entry : cfg_entry, native);
  }

  // Config leaves are not wanted.
  void select_state_only() {
    record.selection_1240 = 0x02;
    record.selection_mode = 2;
  }
};

description native_ethernet() {
  return node("ethernet", cfg,
              {leaf("duplex", cfg, "half"), leaf("auto-negotiation", cfg, "override"),
               node("carrier-delay", cfg, {leaf("carrier-delay-up", cfg, "1"), leaf("carrier-delay", cfg, "2")}),
               leaf("flow-control", cfg, "bidirectional"), leaf("speed", cfg, "1000"), leaf("loopback", cfg, "line"),
               leaf("speeds", cfg), leaf("poe", foreign)});
}

TEST_F(ConfigurationReply, ReportsConfigAndState) {
  EXPECT_EQ(answer_to(10, native_ethernet()), R"(
push ethernet 1
add oc:/interfaces/interface/ethernet/config/duplex-mode "HALF" flag 1
add oc:/interfaces/interface/ethernet/state/duplex-mode "HALF" flag 1
push carrier-delay 1
pop carrier-delay
add oc:/interfaces/interface/ethernet/config/enable-flow-control "true" flag 1
add oc:/interfaces/interface/ethernet/state/enable-flow-control "true" flag 1
add oc:/interfaces/interface/ethernet/config/port-speed "SPEED_1GB" flag 1
add oc:/interfaces/interface/ethernet/state/port-speed "SPEED_1GB" flag 1
pop ethernet
status 0
)");
}

TEST_F(ConfigurationReply, ReportsConfigOnly) {
  EXPECT_EQ(answer_to(0, native_ethernet()), R"(
push ethernet 1
add oc:/interfaces/interface/ethernet/config/duplex-mode "HALF" flag 1
push carrier-delay 1
pop carrier-delay
add oc:/interfaces/interface/ethernet/config/enable-flow-control "true" flag 1
add oc:/interfaces/interface/ethernet/config/port-speed "SPEED_1GB" flag 1
pop ethernet
status 0
)");
}

TEST_F(ConfigurationReply, ReportsStateOnly) {
  select_state_only();
  EXPECT_EQ(answer_to(10, native_ethernet()), R"(
push ethernet 1
add oc:/interfaces/interface/ethernet/state/duplex-mode "HALF" flag 1
push carrier-delay 1
pop carrier-delay
add oc:/interfaces/interface/ethernet/state/enable-flow-control "true" flag 1
add oc:/interfaces/interface/ethernet/state/port-speed "SPEED_1GB" flag 1
pop ethernet
status 0
)");
}

TEST_F(ConfigurationReply, TranslatesOncePerReportedLeaf) {
  EXPECT_EQ(answer_to(10, node("ethernet", cfg, {leaf("speed", cfg, "auto")})), R"(
push ethernet 1
ERR Invalid speed leaf value 'auto' specified in low model
add oc:/interfaces/interface/ethernet/config/port-speed flag 1
ERR Invalid speed leaf value 'auto' specified in low model
add oc:/interfaces/interface/ethernet/state/port-speed flag 1
pop ethernet
status 0
)");
}

TEST_F(ConfigurationReply, UnmappableFlowControlEndsTheWalkButAutoNegotiationDoesNot) {
  EXPECT_EQ(answer_to(10, node("ethernet", cfg,
                               {leaf("auto-negotiation", cfg, "true"), leaf("flow-control", cfg, "ingress"),
                                leaf("speed", cfg, "10")})),
            R"(
push ethernet 1
ERR Unmappable input value 'true'
ERR Unmappable input value 'ingress'
pop ethernet
status INVALID_VALUE
)");
}

// mac-addr, duplex and speed: the state leaf's status replaces the config leaf's. flow-control: the first failure wins.
struct status_row {
  const char *name;
  const char *tag, *ns, *value;
  uint32_t config_status, state_status;
  uint32_t expected;
};

class ReportedStatus : public ConfigurationReply, public testing::WithParamInterface<status_row> {};

TEST_P(ReportedStatus, IsThatOf) {
  const status_row &row = GetParam();
  framework.add_status = {{1, row.config_status}, {2, row.state_status}};
  const description mapped = leaf(row.tag, row.ns, row.value);
  tree native(row.ns == lib ? mapped : node("ethernet", cfg, {mapped}));
  EXPECT_EQ((row.ns == lib ? lib_entry : cfg_entry)(&ctx, native.root(), &out), row.expected);
  EXPECT_EQ(framework.adds, 2U);
}

INSTANTIATE_TEST_SUITE_P(
    Leaves, ReportedStatus,
    testing::Values(status_row{"AddressConfig", "mac-addr", lib, "a", 0xaaf20001, 0, 0},
                    status_row{"AddressBoth", "mac-addr", lib, "a", 0xaaf20001, 0xaaf20002, 0xaaf20002},
                    status_row{"Duplex", "duplex", cfg, "full", 0xaaf20001, 0, 0},
                    status_row{"Speed", "speed", cfg, "10", 0xaaf20001, 0xaaf20002, 0xaaf20002},
                    status_row{"FlowConfig", "flow-control", cfg, "bidirectional", 0xaaf20001, 0xaaf20002, 0xaaf20001},
                    status_row{"FlowState", "flow-control", cfg, "bidirectional", 0, 0xaaf20002, 0xaaf20002}),
    [](const auto &row) { return std::string(row.param.name); });

struct small_reply_row {
  const char *name;
  uint32_t operation;
  bool state_only;
  description (*native)();
  const char *expected;
};

class SmallReply : public ConfigurationReply, public testing::WithParamInterface<small_reply_row> {};

TEST_P(SmallReply, Answers) {
  if (GetParam().state_only) {
    select_state_only();
  }
  EXPECT_EQ(answer_to(GetParam().operation, GetParam().native()), GetParam().expected);
}

description mac_addr() {
  return leaf("mac-addr", lib, "00-No-Check");
}

const small_reply_row small_replies[] = {
    {"AddressConfigAndState", 10, false, mac_addr, R"(
add oc:/interfaces/interface/ethernet/config/mac-address "00-No-Check" flag 1
add oc:/interfaces/interface/ethernet/state/mac-address "00-No-Check" flag 1
status 0
)"},
    {"AddressConfig", 0, false, mac_addr, R"(
add oc:/interfaces/interface/ethernet/config/mac-address "00-No-Check" flag 1
status 0
)"},
    {"AddressInWrite", 1, false, mac_addr, R"(
add oc:/interfaces/interface/ethernet/config/mac-address "00-No-Check" flag 1
status 0
)"},
    {"AddressState", 10, true, mac_addr, R"(
add oc:/interfaces/interface/ethernet/state/mac-address "00-No-Check" flag 1
status 0
)"},
    {"AddressNotAtAll", 0, true, mac_addr, "\nstatus 0\n"},
    {"AddressUnknownTag", 10, false, [] { return leaf("mac-address", lib, "a"); }, "\nstatus 0\n"},
    {"AddressNullTag", 10, false, [] { return leaf(nullptr, lib); },
     "\nERR Tag name is not available!\nstatus BAD_TREE\n"},
    {"AddressBadTree", 10, false, [] { return node("mac-addr", lib).without_array(); },
     "\nERR Failed to get subtrees!\nstatus BAD_TREE\n"},
    {"EthernetUnknownTag", 10, false, [] { return node("ethernets", cfg, {leaf("speed", cfg, "10")}); },
     "\nstatus 0\n"},
    {"EthernetForeign", 10, false, [] { return node("poe", foreign, {leaf("speed", cfg, "10")}); }, "\nstatus 0\n"},
    {"EthernetNullTag", 10, false, [] { return leaf(nullptr, cfg); },
     "\nERR Tag name is not available!\nstatus BAD_TREE\n"},
    {"EthernetNullForeignTag", 10, false, [] { return leaf(nullptr, foreign); },
     "\nERR Tag name is not available!\nstatus 0\n"},
    {"EthernetBadTree", 10, false, [] { return node("ethernet", cfg).without_array(); },
     "\nERR Failed to get subtrees!\nstatus BAD_TREE\n"},
    {"CarrierDelayBadTree", 10, false,
     [] { return node("ethernet", cfg, {node("carrier-delay", cfg).without_array()}); }, R"(
push ethernet 1
ERR Failed to get subtrees!
pop ethernet
status BAD_TREE
)"},
    {"EmptyEthernet", 10, false, [] { return node("ethernet", cfg); }, "\npush ethernet 1\npop ethernet\nstatus 0\n"},
    {"UnflaggedEthernet", 10, false, [] { return native_ethernet().without_flag(); },
     "\npush ethernet 1\npop ethernet\nstatus 0\n"},
    {"NestedNullTag", 0, false,
     [] {
       return node("ethernet", cfg, {leaf("speed", cfg, "10"), leaf(nullptr, cfg)});
     },
     R"(
push ethernet 1
add oc:/interfaces/interface/ethernet/config/port-speed "SPEED_10MB" flag 1
ERR Tag name is not available!
pop ethernet
status BAD_TREE
)"},
};

INSTANTIATE_TEST_SUITE_P(Replies, SmallReply, testing::ValuesIn(small_replies),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(ConfigurationReply, MissingArgumentsTouchNothing) {
  EXPECT_EQ(cfg_entry(&ctx, nullptr, &out), 0xaaf2a000U);
  EXPECT_EQ(lib_entry(&ctx, &out, nullptr), 0xaaf2a000U);
  EXPECT_EQ(oper_entry(&ctx, nullptr, &out), 0xaaf2a000U);
  EXPECT_EQ(framework.calls,
            "ERR Invalid arguments passed!\nERR Invalid arguments passed!\nERR Invalid arguments passed!\n");
}

}  // namespace
