// The hand-written part of a mapping of weather masts, which `ymap` runs in the tests as any other plug-in.
#include "sky_by_hand.h"

#include <cstring>

#include "ymap_frame.h"
#include "ymap_sky_mast_cfg.h"
#include "ymap_sky_mast_oper.h"
#include "ymap_sky_sky_weather.h"

#pragma GCC visibility push(default)
extern "C" {

const char *sky_scale_of(yfw_ctx_t * /*ctx*/, yfw_node_t *leaf) {
  return leaf->value != nullptr && std::strcmp(leaf->value, "C") == 0 ? "celsius" : nullptr;
}

const char *sky_unit_of(yfw_ctx_t * /*ctx*/, yfw_node_t *leaf) {
  return leaf->value != nullptr && std::strcmp(leaf->value, "celsius") == 0 ? "C" : nullptr;
}

bool sky_config_is_wanted(const yfw_request_record_t * /*record*/) {
  return true;
}

uint32_t ymap_ox_sky_skyweather_man_leaf_lvla_weather_config_loginterval(yfw_ctx_t *ctx, yfw_node_t *node,
                                                                         yfw_node_t *out) {
  const bool is_read = ymap_is_read(ctx);
  const bool is_set = !is_read && yfw_map_is_request_delete(node) == 0;
  return yfw_map_datatree_add_path_flagged(ctx, out, "/masts/mast-entry/period", "urn:example:mast-cfg",
                                           is_set ? node->value : nullptr, is_read ? nullptr : node, nullptr, 0, 1);
}

uint32_t ymap_ox_sky_skyweather_lvla_weather_config_parse_augments(yfw_ctx_t * /*ctx*/, yfw_node_t * /*node*/,
                                                                   yfw_node_t * /*out*/) {
  return YMAP_OK;
}

uint32_t ymap_ox_sky_skyweather_cont_lvla_weather_state(yfw_ctx_t * /*ctx*/, yfw_node_t * /*node*/, uint32_t /*count*/,
                                                        yfw_node_t * /*out*/) {
  return YMAP_OK;
}

uint32_t ymap_ox_sky_skyweather_leaf_lvla_weather_state_wind(yfw_ctx_t *ctx, yfw_node_t * /*node*/, yfw_node_t *out) {
  return yfw_map_datatree_add_path_flagged(ctx, out, "/readings/sensor/metres", "urn:example:mast-oper", nullptr,
                                           nullptr, nullptr, 0, 0);
}

// Masts do not like this number: the whole reply fails.
uint32_t ymap_xo_sky_mastcfg_man_leaf_lvla_period(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  if (node->value != nullptr && std::strcmp(node->value, "13") == 0) {
    return YMAP_ERR_INVALID_ARGS;
  }
  return yfw_map_datatree_add_path_flagged(ctx, out, "/skies/sky/weather/config/log-interval",
                                           "urn:example:sky-weather", node->value, nullptr, nullptr, 0, 1);
}

uint32_t ymap_xo_sky_mastoper_list_lvla_readings_sensor(yfw_ctx_t *ctx, yfw_node_t * /*node*/, yfw_node_t *out) {
  const char *name = nullptr;
  const uint32_t status = yfw_map_get_node_info(ctx, "/readings/sensor", "id", &name);
  if (status != YMAP_OK) {
    return status;
  }
  return yfw_map_search_or_add_list(ctx, out, &ctx->request->current_list, "/skies/sky", name, "name",
                                    "urn:example:sky-list");
}

uint32_t ymap_xo_sky_mastoper_leaf_lvla_readings_sensor_metres(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  return yfw_map_datatree_add_path_flagged(ctx, out, "/skies/sky/weather/state/wind", "urn:example:sky-weather",
                                           node->value, nullptr, nullptr, 0, 1);
}

}  // extern "C"
#pragma GCC visibility pop
