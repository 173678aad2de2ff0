// The generated code of the made-up models at work: which hand-written definitions it calls, and what it adds.
#include "mapping_test.hpp"
#include "sky_by_hand.h"
#include "ymap_sky_mast_cfg.h"
#include "ymap_sky_mast_oper.h"
#include "ymap_sky_sky_weather.h"

#include <cstring>

namespace {

constexpr const char *sky = "urn:example:sky-weather";
constexpr const char *mast = "urn:example:mast-cfg";
constexpr const char *readings = "urn:example:mast-oper";

bool is_config_wanted = true;

// Makes the call of a hand-written function visible.
uint32_t note(yfw_ctx_t *ctx, yfw_node_t *out, const char *what) {
  return yfw_map_datatree_add_path_flagged(ctx, out, what, "hand", nullptr, nullptr, nullptr, 0, 1);
}

}  // namespace

extern "C" {

const char *sky_scale_of(yfw_ctx_t * /*ctx*/, yfw_node_t *leaf) {
  return std::strcmp(leaf->value, "C") == 0 ? "celsius" : nullptr;
}

const char *sky_unit_of(yfw_ctx_t * /*ctx*/, yfw_node_t * /*leaf*/) {
  return "C";
}

bool sky_config_is_wanted(const yfw_request_record_t * /*record*/) {
  return is_config_wanted;
}

uint32_t ymap_ox_sky_skyweather_man_leaf_lvla_weather_config_loginterval(yfw_ctx_t *ctx, yfw_node_t * /*node*/,
                                                                         yfw_node_t *out) {
  return note(ctx, out, "/log-interval");
}

uint32_t ymap_ox_sky_skyweather_lvla_weather_config_parse_augments(yfw_ctx_t *ctx, yfw_node_t * /*node*/,
                                                                   yfw_node_t *out) {
  return note(ctx, out, "/beside-config");
}

uint32_t ymap_ox_sky_skyweather_cont_lvla_weather_state(yfw_ctx_t *ctx, yfw_node_t * /*node*/, uint32_t child_count,
                                                        yfw_node_t *out) {
  return note(ctx, out, child_count == 0 ? "/whole-state" : "/state");
}

uint32_t ymap_ox_sky_skyweather_leaf_lvla_weather_state_wind(yfw_ctx_t *ctx, yfw_node_t * /*node*/, yfw_node_t *out) {
  return note(ctx, out, "/wind");
}

uint32_t ymap_xo_sky_mastcfg_man_leaf_lvla_period(yfw_ctx_t *ctx, yfw_node_t * /*node*/, yfw_node_t *out) {
  return note(ctx, out, "/period");
}

uint32_t ymap_xo_sky_mastoper_list_lvla_readings_sensor(yfw_ctx_t * /*ctx*/, yfw_node_t *node, yfw_node_t * /*out*/) {
  return node->value != nullptr ? YMAP_ERR_NO_MATCH : YMAP_OK;
}

uint32_t ymap_xo_sky_mastoper_leaf_lvla_readings_sensor_metres(yfw_ctx_t *ctx, yfw_node_t * /*node*/, yfw_node_t *out) {
  return note(ctx, out, "/metres");
}

}  // extern "C"

namespace {

using support::description;
using support::leaf;
using support::node;

struct walk_row {
  const char *name;
  ymap_node_function *function;
  uint32_t request;
  description input;
  const char *answer;
};

class Golden : public support::mapping_test, public testing::WithParamInterface<walk_row> {};

TEST_P(Golden, Walk) {
  request.operation = GetParam().request;
  EXPECT_EQ(answer(GetParam().function, GetParam().input), GetParam().answer);
}

const auto name_of = [](const auto &row) { return std::string(row.param.name); };
ymap_node_function *const request_entry = ymap_ox_sky_skyweather_augment_lvla_sky;
ymap_node_function *const config_entry = ymap_xo_sky_mastcfg_augment_lvla_mast_entry;
ymap_node_function *const reply_entry = ymap_xo_sky_mastoper_lvla_readings;

description weather(description child) {
  return node("weather", sky, {std::move(child)});
}

INSTANTIATE_TEST_SUITE_P(
    Requests, Golden,
    testing::Values(
        walk_row{"Set", request_entry, YFW_REQUEST_WRITE, weather(node("config", sky, {leaf("unit", sky, "C")})), R"(
push weather 1
push config 1
add urn:example:mast-cfg:/masts/mast-entry/scale "celsius" from unit/0 flag 1
pop config
pop weather
status 0
~weather mark=3
~config mark=3
~unit mark=1
)"},
        walk_row{"DeleteAll", request_entry, YFW_REQUEST_WRITE,
                 weather(node("config", sky).operation(YFW_OPERATION_DELETE)), R"(
push weather 1
push config 1
add urn:example:mast-cfg:/masts/mast-entry/scale from config/4 flag 1
add hand:/log-interval flag 1
add hand:/beside-config flag 1
pop config
pop weather
status 0
~weather mark=3
~config flags=10 mark=3
)"},
        walk_row{"Replace", request_entry, YFW_REQUEST_WRITE,
                 weather(node("config", sky, {leaf("unit", sky, "C")}).operation(YFW_OPERATION_REPLACE)), R"(
push weather 1
push config 1
add urn:example:mast-cfg:/masts/mast-entry/scale from config/4 flag 1 walker 40
add hand:/log-interval flag 1 walker 40
add hand:/beside-config flag 1 walker 40
add urn:example:mast-cfg:/masts/mast-entry/scale "celsius" from unit/0 flag 1 walker 80
pop config
pop weather
status 0
~weather mark=3
~config operation=0 flags=50 mark=3
~unit mark=1
)"},
        walk_row{"ReadAllOfConfig", request_entry, YFW_REQUEST_READ_CONFIG, weather(node("config", sky)), R"(
push weather 1
push config 1
add urn:example:mast-cfg:/masts/mast-entry/scale flag 1
add hand:/log-interval flag 1
add hand:/beside-config flag 1
pop config
pop weather
status 0
~weather mark=3
~config mark=3
)"},
        walk_row{"ReadAllOfState", request_entry, YFW_REQUEST_READ_ALL, weather(node("state", sky)), R"(
push weather 1
push state 1
add hand:/whole-state flag 1
add urn:example:mast-oper:/readings/sensor/hecto-pascal flag 0
add urn:example:mast-oper:/readings/sensor/hecto-pascal flag 0
add hand:/wind flag 1
pop state
pop weather
status 0
~weather mark=3
~state mark=3
)"},
        walk_row{"UnmappedLeafEndsTheWalk", request_entry, YFW_REQUEST_READ_ALL,
                 weather(node("state", sky, {leaf("rain", sky), leaf("wind", sky)})), R"(
push weather 1
push state 1
add hand:/state flag 1
pop state
pop weather
status 51
expansion flags 2
~weather mark=3
~state mark=3
~rain mark=1
)"},
        walk_row{"AbsentLeaf", request_entry, YFW_REQUEST_READ_ALL, weather(node("state", sky, {leaf("haze", sky)})),
                 R"(
push weather 1
push state 1
add hand:/state flag 1
ERR Unsupported tag is specified in the request.
strdup "haze" for YFW MAP
pop state
pop weather
status INVALID_VALUE
error tag haze
~weather mark=3
~state mark=3
)"},
        walk_row{"StateNeedsOperationTen", request_entry, YFW_REQUEST_READ_CONFIG, weather(node("state", sky)), R"(
push weather 1
ERR Unsupported tag is specified in the request.
strdup "state" for YFW MAP
pop weather
status INVALID_VALUE
error tag state
~weather mark=3
)"},
        walk_row{"ForeignNode", request_entry, YFW_REQUEST_WRITE, weather(leaf("tide", support::foreign)), R"(
push weather 1
strdup "tide" for YFW MAP
pop weather
status UNSUPPORTED_TAG
error tag tide
~weather mark=3
)"},
        walk_row{"ForeignNodeBesideConfig", request_entry, YFW_REQUEST_WRITE,
                 weather(node("config", sky, {leaf("tide", support::foreign)})), R"(
push weather 1
push config 1
add hand:/beside-config flag 1
pop config
pop weather
status 0
~weather mark=3
~config mark=3
)"}),
    name_of);

INSTANTIATE_TEST_SUITE_P(
    Replies, Golden,
    testing::Values(
        walk_row{"List", reply_entry, YFW_REQUEST_READ_ALL,
                 node("readings", readings,
                      {node("sensor", readings,
                            {leaf("id", readings, "1"), leaf("hecto-pascal", readings, "990"),
                             leaf("fault", readings, "wet"), leaf("metres", readings, "4"), leaf("odd", readings)}),
                       leaf("sensor", readings, "without counterpart"), leaf("tide", support::foreign)}),
                 R"(
push readings 1
push sensor 2
current /readings/sensor
register sensor
add urn:example:sky-weather:/skies/sky/weather/state/air-pressure "990" flag 1
add hand:/metres flag 1
pop sensor
unregister sensor
ERR No keys specified with a list node.
push sensor 2
current /readings/sensor
pop sensor
pop readings
status 0
)"},
        walk_row{"OnlyForOperationTen", reply_entry, YFW_REQUEST_READ_CONFIG,
                 node("readings", readings, {node("sensor", readings, {leaf("metres", readings, "4")})}), R"(
push readings 1
pop readings
status 0
)"},
        walk_row{"ReportConfigAndState", config_entry, YFW_REQUEST_READ_ALL, leaf("scale", mast, "celsius"), R"(
add urn:example:sky-weather:/skies/sky/weather/config/unit "C" flag 1
add urn:example:sky-weather:/skies/sky/weather/state/rain "C" flag 1
status 0
)"},
        walk_row{"ReportConfig", config_entry, YFW_REQUEST_READ_CONFIG, leaf("scale", mast, "celsius"), R"(
add urn:example:sky-weather:/skies/sky/weather/config/unit "C" flag 1
status 0
)"},
        walk_row{"Manual", config_entry, YFW_REQUEST_READ_CONFIG, leaf("period", mast, "60"), R"(
add hand:/period flag 1
status 0
)"}),
    name_of);

using GoldenReport = support::mapping_test;

TEST_F(GoldenReport, LeavesOutConfigThatIsNotWanted) {
  is_config_wanted = false;
  EXPECT_EQ(answer(config_entry, leaf("scale", mast, "celsius")), R"(
add urn:example:sky-weather:/skies/sky/weather/state/rain "C" flag 1
status 0
)");
  is_config_wanted = true;
}

}  // namespace
