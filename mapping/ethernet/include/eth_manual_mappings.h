// The hand-written mappings that have no generated declaration. The functions that answer for a generated name (list
// and container callbacks, leaves with a hand-written body, one augment hook) are declared in the models' headers.
#pragma once

#include "yfw.h"

// The version of the names that this plug-in exports and of their signatures, for code that links to them. It goes up
// by one when any of them comes, goes or changes; the ABI with the framework has a version of its own.
#define ETH_EXPORTS_VERSION 1

#pragma GCC visibility push(default)
extern "C" {

// Value translators between openconfig-if-ethernet ("FULL", "SPEED_10MB") and the native models ("full", "10",
// "ten-gbps"). Each returns the other model's text for the value of `leaf`, or null, after an error point, when there
// is no value or it has no counterpart. Constant text: never freed or changed by the caller. `leaf` must not be null.
// The native configuration holds three speeds only, so most names that `…_to_high` yields are unknown to `…_to_low`.
const char *eth_drvr_duplex_enum_to_low(yfw_ctx_t *ctx, yfw_node_t *leaf);
const char *eth_drvr_duplex_enum_to_high(yfw_ctx_t *ctx, yfw_node_t *leaf);
const char *eth_drvr_speed_enum_to_low(yfw_ctx_t *ctx, yfw_node_t *leaf);
const char *eth_drvr_speed_enum_to_high(yfw_ctx_t *ctx, yfw_node_t *leaf);

// Whether OpenConfig `config` leaves are reported: no, exactly when one of the 28 selection flags is set and the
// selection mode is 2. Without any flag the mode does not matter.
bool eth_oc_config_leaf_wanted(const yfw_request_record_t *record);

// Reports `auto-negotiate` as "false" when the current native interface configuration has no auto-negotiation item.
// The first and third argument are ignored. Returns the config leaf's status if non-zero, else the state leaf's.
uint32_t ymap_xo_oc_ethernet_get_interface_defaults(void *ignored, yfw_ctx_t *ctx, void *also_ignored, yfw_node_t *out);

// Switches the native auto-negotiation item on for an interface that is created through OpenConfig. `node` is the
// OpenConfig node of the interface. The first argument is ignored.
uint32_t ymap_ox_oc_ethernet_interface_create_defaults(void *ignored, yfw_ctx_t *ctx, yfw_node_t *node,
                                                       yfw_node_t *out);

// Asks for the native layer-1 speed, which `state/effective-speed` is made of. No walker has a tag for that leaf: the
// function is there for callers that know it by name.
uint32_t ymap_ox_oc_ethernet_openconfigifethernet_leaf_lvla_ethernet_state_effectivespeed(yfw_ctx_t *ctx,
                                                                                          yfw_node_t *node,
                                                                                          yfw_node_t *out);

}  // extern "C"
#pragma GCC visibility pop
