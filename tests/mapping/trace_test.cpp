// Trace and error points in both forms, their filter slots, and the assertion on the context.
#include "eth_manual_mappings.h"
#include "mapping_test.hpp"
#include "trace_points.hpp"

#include "ymap_oc_ethernet_openconfig_if_ethernet.h"
#include "ymap_oc_ethernet_zemlo_quarn_drivers_media_eth_cfg.h"
#include "ymap_oc_ethernet_zemlo_quarn_drivers_media_eth_oper.h"
#include "ymap_oc_ethernet_zemlo_quarn_mdrv_lib_cfg.h"

#include <map>
#include <sstream>

using namespace support;

namespace {

constexpr auto *cfg_entry = &ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_augment_lvla_interface_configuration;
constexpr auto *lib_entry = &ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_augment_lvla_interface_configuration;
constexpr auto *oper_entry = &ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface;
constexpr auto *oc_entry = &ymap_ox_oc_ethernet_openconfigifethernet_augment_lvla_interface;

struct trace_row {
  const char *name;
  ymap_node_function *entry;
  uint32_t operation;
  description (*input)();
  const char *expected;  // "level function text" of each point
};

description speed_of(const char *value) {
  return node("ethernet", cfg, {leaf("speed", cfg, value), leaf("poe", foreign), leaf("mode", cfg)});
}

const trace_row trace_rows[] = {
    {"NativeConfiguration", cfg_entry, 0, [] { return speed_of("10"); },
     R"(TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_augment_lvla_interface_configuration Start
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_augment_lvla_interface_configuration Processing tag 'ethernet'
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_lvla_ethernet Start
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_duck_map_container End
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_lvla_ethernet_speed Start
TRC __ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_leaf_lvla_ethernet_speed Start
TRC eth_drvr_speed_enum_to_high Start
TRC eth_drvr_speed_enum_to_high End
TRC __ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_leaf_lvla_ethernet_speed End
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_lvla_ethernet_speed End
TRC __ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_lvla_ethernet_parse_augments Start
TRC __ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_lvla_ethernet_parse_augments End
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_lvla_ethernet Unsupported tag. Ignoring.
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_lvla_ethernet End
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_augment_lvla_interface_configuration End
)"},
    {"NativeAddress", lib_entry, 0, [] { return leaf("mac-addr", lib, "a"); },
     R"(TRC ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_augment_lvla_interface_configuration Start
TRC ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_augment_lvla_interface_configuration Processing tag 'mac-addr'
TRC ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_lvla_macaddr Start
TRC __ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_leaf_lvla_macaddr Start
TRC __ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_leaf_lvla_macaddr End
TRC ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_lvla_macaddr End
TRC ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_augment_lvla_interface_configuration End
)"},
    {"NativeOperational", oper_entry, 10,
     [] {
       return node("ethernet-interface", oper,
                   {node("statistics", oper,
                         {node("statistic", oper,
                               {leaf("interface-name", oper, "Eth0"), leaf("received8021q-frames", oper, "1")}),
                          node("statistic", oper)}),
                    leaf("poe", foreign), leaf("bert", oper)});
     },
     R"(TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface Start
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_duck_map_container End
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface_statistics Start
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_duck_map_container End
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface_statistics_statistic Start
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_list_lvla_ethernetinterface_statistics_statistic Start
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_list_lvla_ethernetinterface_statistics_statistic End
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface_statistic_interfacename Start
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_duck_map_leaf End
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface_statistic_interfacename End
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface_statistic_received8021qframes Start
TRC __ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_leaf_lvla_ethernetinterface_statistic_received8021qframes Start
TRC __ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_leaf_lvla_ethernetinterface_statistic_received8021qframes End
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface_statistic_received8021qframes End
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface_statistics_statistic End
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface_statistics_statistic Start
ERR ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface_statistics_statistic No keys specified with a list node.
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_list_lvla_ethernetinterface_statistics_statistic Start
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_list_lvla_ethernetinterface_statistics_statistic End
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface_statistics_statistic End
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface_statistics End
TRC __ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface_parse_augments Start
TRC __ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface_parse_augments End
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface Unsupported tag. Ignoring.
TRC ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface End
)"},
    {"OpenConfig", oc_entry, 1,
     [] {
       return node("ethernet", oc,
                   {leaf("poe", foreign).operation(3),
                    node("config", oc, {leaf("port-speed", oc, "SPEED_1"), leaf("enable-flow-control", oc, "yes")})});
     },
     R"(TRC ymap_ox_oc_ethernet_openconfigifethernet_augment_lvla_interface Start
TRC ymap_ox_oc_ethernet_openconfigifethernet_augment_lvla_interface Processing tag 'ethernet'
TRC ymap_ox_oc_ethernet_openconfigifethernet_lvla_ethernet Start
TRC ymap_ox_oc_ethernet_openconfigifethernet_duck_map_container Start
TRC ymap_ox_oc_ethernet_openconfigifethernet_duck_map_container End
TRC __ymap_ox_oc_ethernet_openconfigifethernet_lvla_ethernet_parse_augments Start
TRC __ymap_ox_oc_ethernet_openconfigifethernet_lvla_ethernet_parse_augments End
TRC ymap_ox_oc_ethernet_openconfigifethernet_lvla_ethernet_config Start
TRC ymap_ox_oc_ethernet_openconfigifethernet_duck_map_container Start
TRC ymap_ox_oc_ethernet_openconfigifethernet_duck_map_container End
TRC ymap_ox_oc_ethernet_openconfigifethernet_lvla_ethernet_config_portspeed Start
TRC __ymap_ox_oc_ethernet_openconfigifethernet_leaf_lvla_ethernet_config_portspeed Start
TRC eth_drvr_speed_enum_to_low Start
ERR eth_drvr_speed_enum_to_low Invalid speed leaf value 'SPEED_1' specified in high model
TRC eth_drvr_speed_enum_to_low End
TRC __ymap_ox_oc_ethernet_openconfigifethernet_leaf_lvla_ethernet_config_portspeed End
TRC ymap_ox_oc_ethernet_openconfigifethernet_lvla_ethernet_config_portspeed End
TRC ymap_ox_oc_ethernet_openconfigifethernet_lvla_ethernet_config_enableflowcontrol Start
TRC __ymap_ox_oc_ethernet_openconfigifethernet_leaf_lvla_ethernet_config_enableflowcontrol Start
TRC ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_config_enableflowcontrol Start
ERR ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_config_enableflowcontrol Invalid input value 'yes'
TRC ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_config_enableflowcontrol End
TRC __ymap_ox_oc_ethernet_openconfigifethernet_leaf_lvla_ethernet_config_enableflowcontrol End
TRC ymap_ox_oc_ethernet_openconfigifethernet_lvla_ethernet_config_enableflowcontrol End
TRC ymap_ox_oc_ethernet_openconfigifethernet_lvla_ethernet_config End
TRC ymap_ox_oc_ethernet_openconfigifethernet_lvla_ethernet End
TRC ymap_ox_oc_ethernet_openconfigifethernet_augment_lvla_interface End
)"},
};

class TracedWalk : public mapping_test, public testing::WithParamInterface<trace_row> {
 protected:
  void walk() {
    request.operation = GetParam().operation;
    tree input(GetParam().input());
    (void)GetParam().entry(&ctx, input.root(), &out);
  }
};

TEST_P(TracedWalk, BothFormsTellTheSamePoints) {
  framework.logs_traces = true;
  ctx.ring_trace_enabled = 1;
  walk();
  const std::vector<trace_point> points = parsed(framework.ring);
  std::ostringstream address;
  address << static_cast<const void *>(&ctx);
  std::string told;
  ASSERT_EQ(points.size(), framework.log.size());
  for (size_t i = 0; i < points.size(); ++i) {
    const trace_point &point = points[i];
    told += point.level + " " + point.name + " " + point.text + "\n";
    EXPECT_EQ(point.number, i + 1);
    EXPECT_EQ(point.context, address.str());
    EXPECT_EQ(framework.log[i].text, point.level + ": YFW: ctx=" + address.str() + "," + point.text);
  }
  EXPECT_EQ(told, GetParam().expected);
}

// A point is known by its function and line; as many slots are in use as points, each as it was initialised.
TEST_P(TracedWalk, EveryPointHasItsOwnSlot) {
  framework.logs_traces = true;
  ctx.ring_trace_enabled = 1;
  walk();
  std::map<const int32_t *, std::string> place_of;
  std::map<std::string, const int32_t *> slot_at;
  const std::vector<trace_point> points = parsed(framework.ring);
  ASSERT_EQ(points.size(), framework.log.size());
  for (size_t i = 0; i < points.size(); ++i) {
    const std::string place = points[i].name + ":" + std::to_string(points[i].line) + points[i].level;
    EXPECT_EQ(framework.log[i].slot_value, -1);
    EXPECT_EQ(place_of.emplace(framework.log[i].slot, place).first->second, place);
    EXPECT_EQ(slot_at.emplace(place, framework.log[i].slot).first->second, framework.log[i].slot) << place;
  }
}

TEST_P(TracedWalk, SinksAreIndependent) {
  framework.logs_errors = false;
  walk();
  EXPECT_TRUE(framework.log.empty());
  EXPECT_TRUE(framework.ring.empty());
  EXPECT_EQ(framework.sequence_number, 0U);
  framework.logs_traces = true;
  walk();
  EXPECT_FALSE(framework.log.empty());
  EXPECT_EQ(framework.sequence_number, 0U);
  const size_t logged = framework.log.size();
  framework.logs_traces = false;
  ctx.ring_trace_enabled = 2;
  walk();
  EXPECT_EQ(framework.log.size(), logged);
  EXPECT_EQ(framework.ring.size(), framework.sequence_number);
  EXPECT_GE(framework.ring.size(), logged);
}

INSTANTIATE_TEST_SUITE_P(Models, TracedWalk, testing::ValuesIn(trace_rows),
                         [](const auto &row) { return std::string(row.param.name); });

class Trace : public mapping_test {};

TEST_F(Trace, MissingArgumentsAreReportedBetweenStartAndEndWithoutAnEnd) {
  ctx.ring_trace_enabled = 1;
  tree address(leaf("mac-addr", lib, "a"));
  EXPECT_EQ(__ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_leaf_lvla_macaddr(&ctx, address.root(), &out), 0U);
  EXPECT_EQ(__ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_leaf_lvla_macaddr(&ctx, nullptr, &out), 0xaaf2a000U);
  EXPECT_EQ(__ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_leaf_lvla_macaddr(&ctx, address.root(), nullptr), 0xaaf2a000U);
  std::string texts;
  const std::vector<trace_point> points = parsed(framework.ring);
  for (const trace_point &point : points) {
    texts += point.level + " " + point.text + "\n";
  }
  ASSERT_EQ(texts,
            "TRC Start\nTRC End\nTRC Start\nERR Invalid arguments passed!\nTRC Start\nERR Invalid arguments passed!\n");
  EXPECT_LT(points[0].line, points[3].line);
  EXPECT_LT(points[3].line, points[1].line);
}

TEST_F(Trace, LongFormIsCutAt1023Characters) {
  const std::string value(3000, 'x');
  ctx.ring_trace_enabled = 1;
  request.operation = 1;
  tree leaf_node(leaf("auto-negotiate", oc, value.c_str()));
  EXPECT_EQ(ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_config_autonegotiate(&ctx, leaf_node.root(),
                                                                                                 &out),
            0xaaf2e600U);
  ASSERT_EQ(framework.ring.size(), 3U);
  EXPECT_EQ(framework.ring[1].size(), 1023U);
  ASSERT_EQ(framework.log.size(), 1U);
  EXPECT_NE(framework.log[0].text.find("Invalid input value '" + value + "'"), std::string::npos);
}

// Functions that trace no Start or check nothing.
TEST_F(Trace, NoOpCallbacks) {
  framework.logs_traces = true;
  ctx.ring_trace_enabled = 1;
  EXPECT_EQ(ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_duck_map_list(&ctx, nullptr, nullptr), 0U);
  EXPECT_EQ(ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_duck_map_leaf(&ctx, nullptr, nullptr), 0U);
  EXPECT_EQ(ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_duck_map_container(&ctx, nullptr, 3, nullptr), 0U);
  EXPECT_EQ(ymap_ox_oc_ethernet_openconfigifethernet_duck_map_list(&ctx, nullptr, nullptr), 0U);
  EXPECT_EQ(framework.calls, "TRC End\nTRC End\nTRC End\nTRC End\n");
  framework.calls.clear();
  EXPECT_EQ(ymap_ox_oc_ethernet_openconfigifethernet_duck_map_leaf(&ctx, &out, &out), 51U);
  EXPECT_EQ(ymap_ox_oc_ethernet_openconfigifethernet_duck_map_leaf(&ctx, nullptr, &out), 0xaaf2a000U);
  EXPECT_EQ(ymap_ox_oc_ethernet_openconfigifethernet_cont_lvla_ethernet(&ctx, nullptr, 0, &out), 0xaaf2a000U);
  EXPECT_EQ(framework.calls,
            "TRC Start\nTRC End\nTRC Start\nERR Invalid arguments passed!\nTRC Start\nERR Invalid arguments passed!\n");
  EXPECT_EQ(parsed(framework.ring).back().name, "ymap_ox_oc_ethernet_openconfigifethernet_duck_map_container");
}

TEST_F(Trace, DefaultsFunctionsTraceNothing) {
  framework.logs_traces = true;
  framework.item_status = 1;
  (void)ymap_xo_oc_ethernet_get_interface_defaults(nullptr, &ctx, nullptr, &out);
  (void)ymap_ox_oc_ethernet_interface_create_defaults(nullptr, &ctx, &out, &out);
  EXPECT_TRUE(framework.log.empty());
}

struct assertion_row {
  const char *name;
  void (*call)(yfw_ctx_t *, yfw_node_t *);
  const char *file;
};

class NullContext : public mapping_test, public testing::WithParamInterface<assertion_row> {};

// The line is that of the function's first point.
TEST_P(NullContext, EndsTheProcess) {
  ctx.ring_trace_enabled = 1;
  GetParam().call(&ctx, &out);
  const int line = parsed(framework.ring).front().line;
  EXPECT_DEATH(GetParam().call(nullptr, &out), "mapping/ethernet/src/" + std::string(GetParam().file) + "\\.cpp: " +
                                                   std::to_string(line) + " NULL != ctx -- assertion failed\n");
}

const assertion_row assertion_rows[] = {
    {"Walker", [](yfw_ctx_t *ctx, yfw_node_t *node) { (void)oper_entry(ctx, node, node); },
     "ymap_oc_ethernet_zemlo_quarn_drivers_media_eth_oper_parser"},
    {"Body",
     [](yfw_ctx_t *ctx, yfw_node_t *node) {
       (void)__ymap_ox_oc_ethernet_openconfigifethernet_leaf_lvla_ethernet_config_portspeed(ctx, node, node);
     },
     "ymap_oc_ethernet_openconfig_if_ethernet_auto"},
    {"Translator", [](yfw_ctx_t *ctx, yfw_node_t *node) { (void)eth_drvr_duplex_enum_to_low(ctx, node); },
     "eth_manual_mappings"},
};

INSTANTIATE_TEST_SUITE_P(Functions, NullContext, testing::ValuesIn(assertion_rows),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(Trace, NoOpCallbackWithoutContextEndsTheProcess) {
  EXPECT_DEATH((void)ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_duck_map_leaf(nullptr, &out, &out),
               "mapping/ethernet/src/ymap_oc_ethernet_zemlo_quarn_mdrv_lib_cfg_auto\\.cpp: [0-9]+ NULL != ctx -- "
               "assertion failed\n");
}

}  // namespace
