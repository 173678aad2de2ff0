// Whole requests of openconfig-if-ethernet, walked from the interface's entry point.
#include "mapping_test.hpp"

#include "ymap_oc_ethernet_openconfig_if_ethernet.h"

using namespace support;

namespace {

constexpr auto *interface_entry = &ymap_ox_oc_ethernet_openconfigifethernet_augment_lvla_interface;

class RequestWalk : public mapping_test {
 protected:
  std::string answer_to(uint32_t operation, const description &ethernet) {
    request.operation = operation;
    return answer(interface_entry, ethernet);
  }
};

description ethernet(std::vector<description> children) {
  return node("ethernet", oc, std::move(children));
}

description ethernet_config(std::vector<description> leaves) {
  return ethernet({node("config", oc, std::move(leaves))});
}

description ethernet_counters(std::vector<description> leaves) {
  return ethernet({node("state", oc, {node("counters", oc, std::move(leaves))})});
}

TEST_F(RequestWalk, ReadsOneLeaf) {
  EXPECT_EQ(answer_to(10, ethernet_config({leaf("port-speed", oc)})), R"(
push ethernet 1
push config 1
add cfg:/interface-configurations/interface-configuration/ethernet/speed flag 1
pop config
pop ethernet
status 0
expansion flags 2
~ethernet mark=3
~config mark=3
~port-speed mark=1
)");
}

constexpr const char *config_reads =
    R"(add lib:/interface-configurations/interface-configuration/mac-addr flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/duplex flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/speed flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/flow-control flag 1
)";

// The statistics entry is selected by the interface's name, which comes from the tree stack.
constexpr const char *state_reads =
    R"(add lib:/interface-configurations/interface-configuration/mac-addr flag 1
add lib:/interface-configurations/interface-configuration/mac-addr flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/duplex flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/speed flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/flow-control flag 1
stack 1
add oper:/ethernet-interface/interfaces/interface/mac-info/burned-in-mac-address flag 0
stack 1
add oper:/ethernet-interface/statistics/statistic/interface-name "Eth7" flag 0
add oper:/ethernet-interface/statistics/statistic/received-pause-frames flag 0
add oper:/ethernet-interface/statistics/statistic/dropped-giant-packets-greaterthan-mru flag 0
add oper:/ethernet-interface/statistics/statistic/dropped-jabbers-packets-greaterthan-mru flag 0
add oper:/ethernet-interface/statistics/statistic/dropped-ether-stats-fragments flag 0
add oper:/ethernet-interface/statistics/statistic/received8021q-frames flag 0
add oper:/ethernet-interface/statistics/statistic/dropped-packets-with-crc-align-errors flag 0
add oper:/ethernet-interface/statistics/statistic/transmitted-total-pause-frames flag 0
add oper:/ethernet-interface/statistics/statistic/transmitted8021q-frames flag 0
)";

TEST_F(RequestWalk, ReadsEmptyEthernetTwice) {
  yfw_node_t key = leaf("name", oc_if, "Eth7").fields;
  yfw_itree_entry_t entry{&key};
  framework.stack_entry = &entry;
  const std::string walk =
      std::string("push ethernet 1\n") + config_reads + "aggregate ethernet\n" + state_reads + "pop ethernet\n";
  EXPECT_EQ(answer_to(10, ethernet({})), "\n" + walk + walk + "status 0\n~ethernet mark=3\n");
}

// Children that are counted but not flagged do not exist.
TEST_F(RequestWalk, ReadsConfigurationOfEmptyEthernetTwice) {
  const std::string walk = std::string("push ethernet 1\n") + config_reads + "aggregate ethernet\npop ethernet\n";
  EXPECT_EQ(answer_to(0, ethernet_config({leaf("mac-address", oc)}).without_flag()),
            "\n" + walk + walk + "status 0\n~ethernet mark=3\n");
}

TEST_F(RequestWalk, SetsAllConfigLeaves) {
  EXPECT_EQ(answer_to(1, ethernet_config({leaf("enable-flow-control", oc, "true"), leaf("mac-address", oc, "any text"),
                                          leaf("auto-negotiate", oc, "true").operation(2),
                                          leaf("duplex-mode", oc, "HALF"), leaf("port-speed", oc, "SPEED_1GB")})),
            R"(
push ethernet 1
push config 1
add cfg:/interface-configurations/interface-configuration/ethernet/flow-control "bidirectional" from enable-flow-control/0 flag 1
add lib:/interface-configurations/interface-configuration/mac-addr "any text" from mac-address/0 flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation "override" from auto-negotiate/2 flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/duplex "half" from duplex-mode/0 flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/speed "1000" from port-speed/0 flag 1
pop config
pop ethernet
status 0
~ethernet mark=3
~config mark=3
~enable-flow-control mark=1
~mac-address mark=1
~auto-negotiate mark=1
~duplex-mode mark=1
~port-speed mark=1
)");
}

TEST_F(RequestWalk, DeletesSingleLeavesAndLosesUntranslatableValues) {
  EXPECT_EQ(answer_to(1, ethernet_config(
                             {leaf("duplex-mode", oc, "FULL").operation(3), leaf("port-speed", oc, "SPEED_10GB")})),
            R"(
push ethernet 1
push config 1
add cfg:/interface-configurations/interface-configuration/ethernet/duplex from duplex-mode/3 flag 1
ERR Invalid speed leaf value 'SPEED_10GB' specified in high model
add cfg:/interface-configurations/interface-configuration/ethernet/speed from port-speed/0 flag 1
pop config
pop ethernet
status 0
~ethernet mark=3
~config mark=3
~duplex-mode mark=1
~port-speed mark=1
)");
}

// Deleting OpenConfig's auto-negotiate brings back its default, true, which is the native item.
constexpr const char *removals_for_config =
    R"(add lib:/interface-configurations/interface-configuration/mac-addr from config/4 flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation "override" from config/4 flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/duplex from config/4 flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/speed from config/4 flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/flow-control from config/4 flag 1
)";

// A delete is carried out under operation 4, so that leaves that are not there do no harm.
TEST_F(RequestWalk, DeletesAndRemovesConfig) {
  for (const uint32_t operation : {3U, 4U}) {
    framework.calls.clear();
    EXPECT_EQ(answer_to(1, ethernet({node("config", oc).operation(operation)})),
              "\npush ethernet 1\npush config 1\n" + std::string(removals_for_config) +
                  "pop config\npop ethernet\nstatus 0\n~ethernet mark=3\n~config " +
                  (operation == 3 ? "flags=10 " : "") + "mark=3\n~output operation=2 flags=10\n");
  }
}

TEST_F(RequestWalk, DeletesEmptyEthernetTwice) {
  const std::string walk = R"(push ethernet 1
add lib:/interface-configurations/interface-configuration/mac-addr from ethernet/4 flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation "override" from ethernet/4 flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/duplex from ethernet/4 flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/speed from ethernet/4 flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/flow-control from ethernet/4 flag 1
pop ethernet
)";
  EXPECT_EQ(answer_to(1, ethernet({}).operation(3)),
            "\n" + walk + walk + "status 0\n~ethernet flags=10 mark=3\n~output operation=2 flags=10\n");
}

TEST_F(RequestWalk, MergesEmptyEthernetAsNothing) {
  EXPECT_EQ(answer_to(1, ethernet({})), "\npush ethernet 1\npop ethernet\nstatus 0\n~ethernet mark=3\n");
}

TEST_F(RequestWalk, ReplacesConfig) {
  const std::string walk = R"(push ethernet 1
push config 1
add lib:/interface-configurations/interface-configuration/mac-addr from config/4 flag 1 walker 40
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation "override" from config/4 flag 1 walker 40
add cfg:/interface-configurations/interface-configuration/ethernet/duplex from config/4 flag 1 walker 40
add cfg:/interface-configurations/interface-configuration/ethernet/speed from config/4 flag 1 walker 40
add cfg:/interface-configurations/interface-configuration/ethernet/flow-control from config/4 flag 1 walker 40
add cfg:/interface-configurations/interface-configuration/ethernet/speed "10" from port-speed/0 flag 1 walker 80
pop config
pop ethernet
)";
  EXPECT_EQ(answer_to(1, ethernet({node("config", oc, {leaf("port-speed", oc, "SPEED_10MB")}).operation(1)})),
            "\n" + walk +
                "status 0\n~ethernet mark=3\n~config operation=0 flags=50 mark=3\n~port-speed mark=1\n"
                "~output operation=2 flags=10\n");
}

TEST_F(RequestWalk, ReplacesInReadsToo) {
  EXPECT_EQ(answer_to(0, ethernet({node("config", oc, {leaf("port-speed", oc)}).operation(1)})), R"(
push ethernet 1
push config 1
add lib:/interface-configurations/interface-configuration/mac-addr flag 1 walker 40
add cfg:/interface-configurations/interface-configuration/ethernet/auto-negotiation flag 1 walker 40
add cfg:/interface-configurations/interface-configuration/ethernet/duplex flag 1 walker 40
add cfg:/interface-configurations/interface-configuration/ethernet/speed flag 1 walker 40
add cfg:/interface-configurations/interface-configuration/ethernet/flow-control flag 1 walker 40
aggregate config
add cfg:/interface-configurations/interface-configuration/ethernet/speed flag 1 walker 80
pop config
pop ethernet
status 0
expansion flags 2
~ethernet mark=3
~config operation=0 flags=50 mark=3
~port-speed mark=1
)");
}

TEST_F(RequestWalk, FailureEndsTheWalkAndKeepsTheHierarchyEven) {
  framework.add_status[2] = 0xaaf21234;
  EXPECT_EQ(answer_to(1, ethernet_config({leaf("mac-address", oc, "a"), leaf("port-speed", oc, "SPEED_10MB"),
                                          leaf("duplex-mode", oc, "FULL")})),
            R"(
push ethernet 1
push config 1
add lib:/interface-configurations/interface-configuration/mac-addr "a" from mac-address/0 flag 1
add cfg:/interface-configurations/interface-configuration/ethernet/speed "10" from port-speed/0 flag 1
pop config
pop ethernet
status aaf21234
~ethernet mark=3
~config mark=3
~mac-address mark=1
~port-speed mark=1
)");
}

TEST_F(RequestWalk, UnmappedCounterEndsTheWalkWithItsStatus) {
  EXPECT_EQ(answer_to(10, ethernet_counters({leaf("in-crc-errors", oc), leaf("out-mac-control-frames", oc),
                                             leaf("in-jabber-frames", oc)})),
            R"(
push ethernet 1
push state 1
push counters 1
key /interfaces/interface name
add oper:/ethernet-interface/statistics/statistic/interface-name "Eth0" flag 0
add oper:/ethernet-interface/statistics/statistic/dropped-packets-with-crc-align-errors flag 0
pop counters
pop state
pop ethernet
status 51
expansion flags 2
~ethernet mark=3
~state mark=3
~counters mark=3
~in-crc-errors mark=1
~out-mac-control-frames mark=1
)");
}

TEST_F(RequestWalk, NullTagStopsAfterWhatStandsBefore) {
  EXPECT_EQ(answer_to(1, ethernet_config({leaf("mac-address", oc, "a"), leaf(nullptr, oc), leaf("mac-address", oc)})),
            R"(
push ethernet 1
push config 1
add lib:/interface-configurations/interface-configuration/mac-addr "a" from mac-address/0 flag 1
ERR Tag name is not available!
pop config
pop ethernet
status BAD_TREE
~ethernet mark=3
~config mark=3
~mac-address mark=1
)");
}

TEST_F(RequestWalk, NullTagOfTheEntryIsUnsupported) {
  EXPECT_EQ(answer_to(0, leaf(nullptr, oc)), R"(
ERR Tag name is not available!
ERR Unsupported tag is specified in the request.
strdup (null) for YFW MAP
status INVALID_VALUE
)");
}

TEST_F(RequestWalk, MissingArgumentsTouchNothing) {
  EXPECT_EQ(interface_entry(&ctx, nullptr, &out), 0xaaf2a000U);
  EXPECT_EQ(interface_entry(&ctx, &out, nullptr), 0xaaf2a000U);
  EXPECT_EQ(framework.calls, "ERR Invalid arguments passed!\nERR Invalid arguments passed!\n");
}

// A leaf flagged 0x02 in a read stands for its whole container, unless leaves without the flag are read beside it.
TEST_F(RequestWalk, FlaggedLeafExpandsItsContainer) {
  EXPECT_EQ(answer_to(0, ethernet_config({leaf("port-speed", oc).flag(0x02)})),
            "\npush ethernet 1\npush config 1\n"
            "add cfg:/interface-configurations/interface-configuration/ethernet/speed flag 1\n" +
                std::string(config_reads) +
                "aggregate config\npop config\npop ethernet\nstatus 0\nexpansion flags 10000\n"
                "~ethernet mark=3\n~config mark=3\n~port-speed mark=6\n");
}

// The counters are walked with the state node, whose own children do not count then.
TEST_F(RequestWalk, FlaggedLeafExpandsContainersBelowItsOwn) {
  yfw_node_t key = leaf("name", oc_if, "Eth7").fields;
  yfw_itree_entry_t entry{&key};
  framework.stack_entry = &entry;
  EXPECT_EQ(answer_to(10, ethernet({node("state", oc, {leaf("duplex-mode", oc).flag(0x02)})})),
            "\npush ethernet 1\npush state 1\n"
            "add cfg:/interface-configurations/interface-configuration/ethernet/duplex flag 1\n" +
                std::string(state_reads) +
                "pop state\npop ethernet\nstatus 0\nexpansion flags 10000\n"
                "~ethernet mark=3\n~state mark=3\n~duplex-mode mark=6\n");
}

TEST_F(RequestWalk, FlaggedLeafBesideAnotherDoesNotExpand) {
  EXPECT_EQ(answer_to(0, ethernet_config({leaf("port-speed", oc).flag(0x02), leaf("mac-address", oc)})), R"(
push ethernet 1
push config 1
add cfg:/interface-configurations/interface-configuration/ethernet/speed flag 1
add lib:/interface-configurations/interface-configuration/mac-addr flag 1
pop config
pop ethernet
status 0
expansion flags 10006
~ethernet mark=3
~config mark=3
~port-speed mark=6
~mac-address mark=1
)");
}

TEST_F(RequestWalk, ExpansionFollowsAFailedWalkToo) {
  EXPECT_EQ(answer_to(0, ethernet_config({leaf("port-speed", oc).flag(0x02), leaf("bogus", oc)})),
            "\npush ethernet 1\npush config 1\n"
            "add cfg:/interface-configurations/interface-configuration/ethernet/speed flag 1\n"
            "ERR Unsupported tag is specified in the request.\nstrdup \"bogus\" for YFW MAP\n" +
                std::string(config_reads) +
                "aggregate config\npop config\npop ethernet\nstatus INVALID_VALUE\nerror tag bogus\n"
                "expansion flags 10000\n~ethernet mark=3\n~config mark=3\n~port-speed mark=6\n");
}

TEST_F(RequestWalk, EnteringAContainerInAReadDropsMostExpansionFlags) {
  record.expansion_flags = 0xffffffff;
  EXPECT_EQ(answer_to(0, ethernet_config({leaf("mac-address", oc)})), R"(
push ethernet 1
push config 1
add lib:/interface-configurations/interface-configuration/mac-addr flag 1
pop config
pop ethernet
status 0
expansion flags 11111112
~ethernet mark=3
~config mark=3
~mac-address mark=1
)");
}

TEST_F(RequestWalk, PendingExpansionIsSettledInWritesToo) {
  record.expansion_flags = 4;
  EXPECT_EQ(answer_to(1, ethernet({})),
            "\npush ethernet 1\npop ethernet\nstatus 0\nexpansion flags 1\n~ethernet mark=3\n");
}

// Only 1 means that an expansion is in progress.
TEST_F(RequestWalk, OtherExpansionProgressIsNone) {
  record.expansion_in_progress = 2;
  EXPECT_EQ(answer_to(1, ethernet_config({leaf("mac-address", oc, "a")})), R"(
push ethernet 1
push config 1
add lib:/interface-configurations/interface-configuration/mac-addr "a" from mac-address/0 flag 1
pop config
pop ethernet
status 0
expansion in progress
~ethernet mark=3
~config mark=3
~mac-address mark=1
)");
}

TEST_F(RequestWalk, SuppressedMarkingLeavesLeavesUnmarked) {
  record.leaf_marking_suppressed = 1;
  EXPECT_EQ(answer_to(0, ethernet_config({leaf("port-speed", oc).flag(0x02)})), R"(
push ethernet 1
push config 1
add cfg:/interface-configurations/interface-configuration/ethernet/speed flag 1
pop config
pop ethernet
status 0
~ethernet mark=3
~config mark=3
)");
}

TEST_F(RequestWalk, AggregateChildGoesToItsPlugin) {
  framework.aggregate_status = {0xaaf20001};
  EXPECT_EQ(answer_to(1, ethernet_config({leaf("aggregate-id", aggregate, "lag1"), leaf("mac-address", oc, "a")})), R"(
push ethernet 1
push config 1
aggregate aggregate-id
pop config
pop ethernet
status aaf20001
~ethernet mark=3
~config mark=3
)");
}

// A framework that expands by itself: nothing is pushed or marked, and an aggregate node is handed over twice.
TEST_F(RequestWalk, AggregateChildUnderExpansionGoesToItsPluginTwice) {
  record.expansion_in_progress = 1;
  framework.aggregate_status = {0xaaf20001, 0};
  EXPECT_EQ(answer_to(10, ethernet_config({leaf("aggregate-id", aggregate), leaf("mac-address", oc)})), R"(
aggregate aggregate-id
aggregate aggregate-id
add lib:/interface-configurations/interface-configuration/mac-addr flag 1
status 0
expansion in progress
)");
}

struct rejected_row {
  const char *name;
  uint32_t operation;
  description (*request)();
  const char *expected;
};

class RejectedRequest : public RequestWalk, public testing::WithParamInterface<rejected_row> {};

TEST_P(RejectedRequest, Answers) {
  EXPECT_EQ(answer_to(GetParam().operation, GetParam().request()), GetParam().expected);
}

const char *const state_is_unsupported = R"(
push ethernet 1
ERR Unsupported tag is specified in the request.
strdup "state" for YFW MAP
pop ethernet
status INVALID_VALUE
error tag state
~ethernet mark=3
)";

const rejected_row rejected_rows[] = {
    {"UnknownTop", 1, [] { return node("bogus", oc); }, R"(
ERR Unsupported tag is specified in the request.
strdup "bogus" for YFW MAP
status INVALID_VALUE
error tag bogus
)"},
    {"UnknownUnderEthernet", 1, [] { return ethernet({leaf("configs", oc)}); }, R"(
push ethernet 1
ERR Unsupported tag is specified in the request.
strdup "configs" for YFW MAP
pop ethernet
status INVALID_VALUE
error tag configs
~ethernet mark=3
)"},
    {"UnknownUnderConfig", 1,
     [] {
       return ethernet_config({leaf("Port-speed", oc), leaf("mac-address", oc, "a")});
     },
     R"(
push ethernet 1
push config 1
ERR Unsupported tag is specified in the request.
strdup "Port-speed" for YFW MAP
pop config
pop ethernet
status INVALID_VALUE
error tag Port-speed
~ethernet mark=3
~config mark=3
)"},
    {"EffectiveSpeedUnderState", 10, [] { return ethernet({node("state", oc, {leaf("effective-speed", oc)})}); }, R"(
push ethernet 1
push state 1
ERR Unsupported tag is specified in the request.
strdup "effective-speed" for YFW MAP
pop state
pop ethernet
status INVALID_VALUE
error tag effective-speed
~ethernet mark=3
~state mark=3
)"},
    {"UnknownUnderCounters", 10, [] { return ethernet_counters({leaf("in-frames", oc)}); }, R"(
push ethernet 1
push state 1
push counters 1
key /interfaces/interface name
add oper:/ethernet-interface/statistics/statistic/interface-name "Eth0" flag 0
ERR Unsupported tag is specified in the request.
strdup "in-frames" for YFW MAP
pop counters
pop state
pop ethernet
status INVALID_VALUE
error tag in-frames
~ethernet mark=3
~state mark=3
~counters mark=3
)"},
    {"StateInWrite", 1, [] { return ethernet_counters({leaf("in-crc-errors", oc)}); }, state_is_unsupported},
    {"StateInConfigurationRead", 0, [] { return ethernet_counters({leaf("in-crc-errors", oc)}); },
     state_is_unsupported},
    {"ForeignTopInWrite", 1, [] { return node("poe", foreign); }, R"(
strdup "poe" for YFW MAP
status UNSUPPORTED_TAG
error tag poe
)"},
    {"ForeignTopWithChildrenInRead", 10, [] { return node("poe", foreign, {leaf("config", oc)}); }, R"(
status 0
)"},
    {"ForeignUnderEthernetInWrite", 1, [] { return ethernet({leaf("poe", foreign)}); }, R"(
push ethernet 1
strdup "poe" for YFW MAP
pop ethernet
status UNSUPPORTED_TAG
error tag poe
~ethernet mark=3
)"},
    {"ForeignUnderEthernetInDelete", 1, [] { return ethernet({leaf("poe", foreign).operation(3)}); }, R"(
push ethernet 1
pop ethernet
status 0
~ethernet mark=3
)"},
    {"ForeignUnderEthernetInRead", 0, [] { return ethernet({leaf("poe", foreign)}); }, R"(
push ethernet 1
pop ethernet
status 0
~ethernet mark=3
)"},
    {"ForeignUnderConfigInWrite", 1, [] { return ethernet_config({leaf("poe", foreign)}); }, R"(
push ethernet 1
push config 1
pop config
pop ethernet
status 0
~ethernet mark=3
~config mark=3
)"},
    {"BadEthernet", 1, [] { return ethernet({}).without_array(); }, R"(
ERR Failed to get subtrees!
status BAD_TREE
)"},
    {"BadConfig", 1, [] { return ethernet({node("config", oc).without_array()}); }, R"(
push ethernet 1
ERR Failed to get subtrees!
pop ethernet
status BAD_TREE
~ethernet mark=3
)"},
    {"BadState", 10, [] { return ethernet({node("state", oc).without_array()}); }, R"(
push ethernet 1
ERR Failed to get subtrees!
pop ethernet
status BAD_TREE
~ethernet mark=3
)"},
    {"BadCounters", 10, [] { return ethernet({node("state", oc, {node("counters", oc).without_array()})}); }, R"(
push ethernet 1
push state 1
ERR Failed to get subtrees!
pop state
pop ethernet
status BAD_TREE
~ethernet mark=3
~state mark=3
)"},
};

INSTANTIATE_TEST_SUITE_P(Requests, RejectedRequest, testing::ValuesIn(rejected_rows),
                         [](const auto &row) { return std::string(row.param.name); });

// A childless foreign node that a read ignores is taken for an empty ethernet container all the same.
TEST_F(RequestWalk, ChildlessForeignNodeInAReadIsExpanded) {
  EXPECT_EQ(answer_to(0, leaf("poe", foreign)),
            "\npush poe 1\n" + std::string(config_reads) + "aggregate poe\npop poe\nstatus 0\n~poe mark=3\n");
}

}  // namespace
