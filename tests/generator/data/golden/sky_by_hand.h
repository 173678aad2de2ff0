// What a mapping of these models would write by hand.
#pragma once

#include "yfw.h"

extern "C" {
const char *sky_scale_of(yfw_ctx_t *ctx, yfw_node_t *leaf);
const char *sky_unit_of(yfw_ctx_t *ctx, yfw_node_t *leaf);
bool sky_config_is_wanted(const yfw_request_record_t *record);
}
