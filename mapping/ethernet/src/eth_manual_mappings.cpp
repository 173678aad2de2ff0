// Mappings between openconfig-if-ethernet and the native models that need more than a path rename.
#include "eth_manual_mappings.h"

#include "eth_namespaces.h"
#include "ymap_frame.h"
#include "ymap_oc_ethernet_openconfig_if_ethernet.h"
#include "ymap_oc_ethernet_zemlo_quarn_drivers_media_eth_cfg.h"
#include "ymap_oc_ethernet_zemlo_quarn_drivers_media_eth_oper.h"

#include <cstring>

#define ETH_PATH_NATIVE_AUTONEG "/interface-configurations/interface-configuration/ethernet/auto-negotiation"
#define ETH_PATH_NATIVE_FLOW_CONTROL "/interface-configurations/interface-configuration/ethernet/flow-control"

#define ETH_TEXT_OF_(number) #number
#define ETH_TEXT_OF(number) ETH_TEXT_OF_(number)

// The version of the ABI that this plug-in is built for, for tools that read the library without loading it.
__attribute__((section("ymap.abi"), used)) static const char eth_abi_version[] = ETH_TEXT_OF(YFW_ABI_VERSION);

// ---- value translation

namespace {

// Texts are held in place, not pointed to, so that the tables need no relocation and stay read-only.
struct eth_value_row {
  char from[20];
  char to[16];
};

constexpr eth_value_row eth_duplex_to_low[] = {{"FULL", "full"}, {"HALF", "half"}};

constexpr eth_value_row eth_duplex_to_high[] = {{"full", "FULL"}, {"half", "HALF"}};

// Only what the native configuration can hold.
constexpr eth_value_row eth_speed_to_low[] = {{"SPEED_10MB", "10"}, {"SPEED_100MB", "100"}, {"SPEED_1GB", "1000"}};

// Numbers come from the native configuration, words from the operational model. One gigabit has a different spelling
// for each of them.
constexpr eth_value_row eth_speed_to_high[] = {
    {"10", "SPEED_10MB"},        {"100", "SPEED_100MB"},          {"1000", "SPEED_1GB"},
    {"one-gbps", "SPEED_1G"},    {"ten-gbps", "SPEED_10G"},       {"twenty-five-gbps", "SPEED_25G"},
    {"forty-gbps", "SPEED_40G"}, {"fifty-gbps", "SPEED_50G"},     {"hundred-gbps", "SPEED_100G"},
    {"ten-mbps", "SPEED_10MB"},  {"hundred-mbps", "SPEED_100MB"},
};

// The text that `value` stands for in `rows`, or null. A comparison that fails counts as no match.
template <size_t count>
const char *eth_translated(const eth_value_row (&rows)[count], const char *value) {
  for (const eth_value_row &row : rows) {
    int indicator = 1;
    if (strcmp_s(row.from, std::strlen(row.from), value, &indicator) == 0 && indicator == 0) {
      return row.to;
    }
  }
  return nullptr;
}

}  // namespace

// Exported functions are defined inside `extern "C"`, so that one whose signature is not the declared one does not
// compile.
extern "C" {

const char *eth_drvr_duplex_enum_to_low(yfw_ctx_t *ctx, yfw_node_t *leaf) {
  YMAP_START(ctx);
  const char *result = nullptr;
  if (leaf->value == nullptr) {
    YMAP_ERR(ctx, "Null duplex leaf specified in high model");
  } else {
    result = eth_translated(eth_duplex_to_low, leaf->value);
    if (result == nullptr) {
      YMAP_ERR(ctx, "Invalid duplex leaf value '%s' specified in high model", leaf->value);
    }
  }
  YMAP_TRC(ctx, "End");
  return result;
}

const char *eth_drvr_duplex_enum_to_high(yfw_ctx_t *ctx, yfw_node_t *leaf) {
  YMAP_START(ctx);
  const char *result = nullptr;
  if (leaf->value == nullptr) {
    YMAP_ERR(ctx, "Null duplex leaf specified in low model");
  } else {
    result = eth_translated(eth_duplex_to_high, leaf->value);
    if (result == nullptr) {
      YMAP_ERR(ctx, "Invalid duplex leaf value '%s' specified in low model", leaf->value);
    }
  }
  YMAP_TRC(ctx, "End");
  return result;
}

const char *eth_drvr_speed_enum_to_low(yfw_ctx_t *ctx, yfw_node_t *leaf) {
  YMAP_START(ctx);
  const char *result = nullptr;
  if (leaf->value == nullptr) {
    YMAP_ERR(ctx, "Null speed leaf specified in high model");
  } else {
    result = eth_translated(eth_speed_to_low, leaf->value);
    if (result == nullptr) {
      YMAP_ERR(ctx, "Invalid speed leaf value '%s' specified in high model", leaf->value);
    }
  }
  YMAP_TRC(ctx, "End");
  return result;
}

const char *eth_drvr_speed_enum_to_high(yfw_ctx_t *ctx, yfw_node_t *leaf) {
  YMAP_START(ctx);
  const char *result = nullptr;
  if (leaf->value == nullptr) {
    YMAP_ERR(ctx, "Null speed leaf specified in low model");
  } else {
    result = eth_translated(eth_speed_to_high, leaf->value);
    if (result == nullptr) {
      YMAP_ERR(ctx, "Invalid speed leaf value '%s' specified in low model", leaf->value);
    }
  }
  YMAP_TRC(ctx, "End");
  return result;
}

// ---- shared by the mappings below

bool eth_oc_config_leaf_wanted(const yfw_request_record_t *record) {
  const bool selected =
      (record->selection_1172 & YFW_SELECTION_1172) != 0 || (record->selection_1216 & YFW_SELECTION_1216) != 0 ||
      (record->selection_1240 & YFW_SELECTION_1240) != 0 || (record->selection_1248 & YFW_SELECTION_1248) != 0 ||
      (record->selection_1272 & YFW_SELECTION_1272) != 0 || (record->selection_1273 & YFW_SELECTION_1273) != 0 ||
      (record->selection_1280 & YFW_SELECTION_1280) != 0 || (record->selection_1292 & YFW_SELECTION_1292) != 0 ||
      (record->selection_1625 & YFW_SELECTION_1625) != 0;
  return !selected || record->selection_mode != 2;
}

}  // extern "C"

namespace {

// Adds a path that no request node stands behind: a read without a value, a report with one.
uint32_t eth_add(yfw_ctx_t *ctx, yfw_node_t *out, const char *path, const char *ns, const char *value, uint32_t flag) {
  return yfw_map_datatree_add_path_flagged(ctx, out, path, ns, value, nullptr, nullptr, 0, flag);
}

// Adds a native configuration path that carries the request node's operation.
uint32_t eth_add_for(yfw_ctx_t *ctx, yfw_node_t *out, const char *path, const char *value, yfw_node_t *source) {
  return yfw_map_datatree_add_path_flagged(ctx, out, path, ETH_NS_NATIVE_CFG, value, source, nullptr, 0, 1);
}

// Reports an OpenConfig leaf: the config leaf if it is wanted, the state leaf if operational state is read.
uint32_t eth_report(yfw_ctx_t *ctx, yfw_node_t *out, const char *config_path, const char *state_path,
                    const char *value) {
  uint32_t config_status = YMAP_OK;
  uint32_t state_status = YMAP_OK;
  if (eth_oc_config_leaf_wanted(ctx->request)) {
    config_status = eth_add(ctx, out, config_path, ETH_NS_OC_ETHERNET, value, 1);
  }
  if (ymap_is_read_all(ctx)) {
    state_status = eth_add(ctx, out, state_path, ETH_NS_OC_ETHERNET, value, 1);
  }
  return config_status != YMAP_OK ? config_status : state_status;
}

// Makes the OpenConfig interface of the native entry that is being entered the current list entry.
uint32_t eth_enter_interface(yfw_ctx_t *ctx, yfw_node_t *out, const char *native_list) {
  const char *name = nullptr;
  const uint32_t status = yfw_map_get_node_info(ctx, native_list, "interface-name", &name);
  if (status != YMAP_OK) {
    return status;
  }
  return yfw_map_search_or_add_list(ctx, out, &ctx->request->current_list, "/interfaces/interface", name, "name",
                                    ETH_NS_OC_INTERFACES);
}

// The name of the OpenConfig interface that the request is in; `*name` stays as it is when there is none. Under
// expansion the node hierarchy is not kept, so the tree stack answers. Returns the status of the lookup.
uint32_t eth_interface_name(yfw_ctx_t *ctx, const char **name) {
  if (ctx->request->expansion_in_progress != 1) {
    return yfw_map_get_node_info(ctx, "/interfaces/interface", "name", name);
  }
  yfw_itree_entry_t *entry = nullptr;
  const uint32_t status = yfw_map_util_itree_stack_peak_level(ctx, 1, &entry);
  if ((status & 0xe0000000U) == 0 && entry != nullptr && entry->node != nullptr) {
    *name = entry->node->value;
  }
  return status;
}

// Asks for a native operational leaf in a read; otherwise only the interface's name is looked up.
uint32_t eth_read_oper(yfw_ctx_t *ctx, yfw_node_t *out, const char *path) {
  const char *name = nullptr;
  const uint32_t status = eth_interface_name(ctx, &name);
  return ymap_is_read(ctx) ? eth_add(ctx, out, path, ETH_NS_NATIVE_OPER, nullptr, 0) : status;
}

bool eth_value_is(const yfw_node_t *node, const char *text) {
  return node->value != nullptr && yfw_map_do_these_match(node->value, text) != 0;
}

const char *eth_printable(const char *value) {
  return value != nullptr ? value : "<null>";
}

}  // namespace

extern "C" {

// ---- interface lists and defaults

uint32_t ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_list_lvla_ethernetinterface_statistics_statistic(
    yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  YMAP_START(ctx);
  if (node == nullptr || out == nullptr) {
    YMAP_ERR(ctx, "Invalid arguments passed!");
    return YMAP_ERR_INVALID_ARGS;
  }
  const uint32_t status = eth_enter_interface(ctx, out, "/ethernet-interface/statistics/statistic");
  YMAP_TRC(ctx, "End");
  return status;
}

uint32_t ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_list_lvla_ethernetinterface_interfaces_interface(
    yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  YMAP_START(ctx);
  if (node == nullptr || out == nullptr) {
    YMAP_ERR(ctx, "Invalid arguments passed!");
    return YMAP_ERR_INVALID_ARGS;
  }
  const uint32_t status = eth_enter_interface(ctx, out, "/ethernet-interface/interfaces/interface");
  YMAP_TRC(ctx, "End");
  return status;
}

uint32_t ymap_xo_oc_ethernet_get_interface_defaults(void * /*ignored*/, yfw_ctx_t *ctx, void * /*also_ignored*/,
                                                    yfw_node_t *out) {
  const char *item = nullptr;
  if (yfw_map_get_node_info_mpls_static(ctx, "/interface-configurations/interface-configuration", "ethernet",
                                        "auto-negotiation", &item) == 0) {
    return YMAP_OK;
  }
  return eth_report(ctx, out, "/interfaces/interface/ethernet/config/auto-negotiate",
                    "/interfaces/interface/ethernet/state/auto-negotiate", "false");
}

uint32_t ymap_ox_oc_ethernet_interface_create_defaults(void * /*ignored*/, yfw_ctx_t *ctx, yfw_node_t *node,
                                                       yfw_node_t *out) {
  return eth_add_for(ctx, out, ETH_PATH_NATIVE_AUTONEG, "override", node);
}

// ---- auto-negotiation: "true" is the native item "override", "false" is its absence

uint32_t ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_config_autonegotiate(yfw_ctx_t *ctx,
                                                                                              yfw_node_t *node,
                                                                                              yfw_node_t *out) {
  YMAP_START(ctx);
  if (node == nullptr || out == nullptr) {
    YMAP_ERR(ctx, "Invalid arguments passed!");
    return YMAP_ERR_INVALID_ARGS;
  }
  uint32_t status = YMAP_OK;
  if (ymap_is_read(ctx)) {
    status = eth_add(ctx, out, ETH_PATH_NATIVE_AUTONEG, ETH_NS_NATIVE_CFG, nullptr, 1);
  } else if (yfw_map_is_request_delete(node) != 0) {
    // The leaf's default is "true": without it the native item is on.
    ymap_change_operation(out, YFW_OPERATION_CREATE);
    status = eth_add_for(ctx, out, ETH_PATH_NATIVE_AUTONEG, "override", node);
  } else if (eth_value_is(node, "true")) {
    status = eth_add_for(ctx, out, ETH_PATH_NATIVE_AUTONEG, "override", node);
  } else if (eth_value_is(node, "false")) {
    YMAP_TRC(ctx, "XXXXX Delete auto-neg item XXXXX");
    ymap_change_operation(node, YFW_OPERATION_REMOVE);
    yfw_node_t *created = nullptr;
    status = yfw_map_datatree_add_path_flagged(ctx, out, ETH_PATH_NATIVE_AUTONEG, ETH_NS_NATIVE_CFG, nullptr, node,
                                               &created, 0, 1);
    if (status != YMAP_OK) {
      YMAP_TRC(ctx, "Failed to delete auto-neg item, perhaps it didn't exist");
      status = YMAP_OK;
    }
    if (created != nullptr) {
      ymap_change_operation(created, YFW_OPERATION_REMOVE);
    }
  } else {
    YMAP_ERR(ctx, "Invalid input value '%s'", eth_printable(node->value));
    status = YMAP_ERR_INVALID_VALUE;
  }
  YMAP_TRC(ctx, "End");
  return status;
}

uint32_t ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_state_autonegotiate(yfw_ctx_t *ctx,
                                                                                             yfw_node_t *node,
                                                                                             yfw_node_t *out) {
  YMAP_START(ctx);
  if (node == nullptr || out == nullptr) {
    YMAP_ERR(ctx, "Invalid arguments passed!");
    return YMAP_ERR_INVALID_ARGS;
  }
  const uint32_t status =
      ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_config_autonegotiate(ctx, node, out);
  YMAP_TRC(ctx, "End");
  return status;
}

uint32_t ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_man_leaf_lvla_ethernet_autonegotiation(yfw_ctx_t *ctx,
                                                                                                 yfw_node_t *node,
                                                                                                 yfw_node_t *out) {
  YMAP_START(ctx);
  if (node == nullptr || out == nullptr) {
    YMAP_ERR(ctx, "Invalid arguments passed!");
    return YMAP_ERR_INVALID_ARGS;
  }
  uint32_t status = YMAP_OK;
  // Nothing is added in any case: the absence of the item is reported with the interface's defaults.
  if (ymap_is_read(ctx) && !eth_value_is(node, "override")) {
    if (eth_value_is(node, "true")) {
      YMAP_ERR(ctx, "Unmappable input value '%s'", node->value);
    } else {
      YMAP_ERR(ctx, "Invalid input value '%s'", eth_printable(node->value));
      status = YMAP_ERR_INVALID_VALUE;
    }
  }
  YMAP_TRC(ctx, "End");
  return status;
}

// ---- flow control: "true" is the native value "bidirectional", "false" is the leaf's absence

uint32_t ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_config_enableflowcontrol(yfw_ctx_t *ctx,
                                                                                                  yfw_node_t *node,
                                                                                                  yfw_node_t *out) {
  YMAP_START(ctx);
  if (node == nullptr || out == nullptr) {
    YMAP_ERR(ctx, "Invalid arguments passed!");
    return YMAP_ERR_INVALID_ARGS;
  }
  uint32_t status = YMAP_OK;
  if (ymap_is_read(ctx)) {
    status = eth_add(ctx, out, ETH_PATH_NATIVE_FLOW_CONTROL, ETH_NS_NATIVE_CFG, nullptr, 1);
  } else if (yfw_map_is_request_delete(node) != 0) {
    status = eth_add_for(ctx, out, ETH_PATH_NATIVE_FLOW_CONTROL, nullptr, node);
  } else if (eth_value_is(node, "true")) {
    status = eth_add_for(ctx, out, ETH_PATH_NATIVE_FLOW_CONTROL, "bidirectional", node);
  } else if (eth_value_is(node, "false")) {
    ymap_change_operation(node, YFW_OPERATION_DELETE);
    status = eth_add_for(ctx, out, ETH_PATH_NATIVE_FLOW_CONTROL, nullptr, node);
  } else {
    YMAP_ERR(ctx, "Invalid input value '%s'", eth_printable(node->value));
    status = YMAP_ERR_INVALID_VALUE;
  }
  YMAP_TRC(ctx, "End");
  return status;
}

uint32_t ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_state_enableflowcontrol(yfw_ctx_t *ctx,
                                                                                                 yfw_node_t *node,
                                                                                                 yfw_node_t *out) {
  YMAP_START(ctx);
  if (node == nullptr || out == nullptr) {
    YMAP_ERR(ctx, "Invalid arguments passed!");
    return YMAP_ERR_INVALID_ARGS;
  }
  const uint32_t status =
      ymap_ox_oc_ethernet_openconfigifethernet_man_leaf_lvla_ethernet_config_enableflowcontrol(ctx, node, out);
  YMAP_TRC(ctx, "End");
  return status;
}

uint32_t ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_man_leaf_lvla_ethernet_flowcontrol(yfw_ctx_t *ctx,
                                                                                             yfw_node_t *node,
                                                                                             yfw_node_t *out) {
  YMAP_START(ctx);
  if (node == nullptr || out == nullptr) {
    YMAP_ERR(ctx, "Invalid arguments passed!");
    return YMAP_ERR_INVALID_ARGS;
  }
  uint32_t status = YMAP_OK;
  if (ymap_is_read(ctx)) {
    if (eth_value_is(node, "bidirectional")) {
      status = eth_report(ctx, out, "/interfaces/interface/ethernet/config/enable-flow-control",
                          "/interfaces/interface/ethernet/state/enable-flow-control", "true");
    } else if (eth_value_is(node, "ingress") || eth_value_is(node, "egress")) {
      YMAP_ERR(ctx, "Unmappable input value '%s'", node->value);
      status = YMAP_ERR_INVALID_VALUE;
    } else {
      YMAP_ERR(ctx, "Invalid input value '%s'", eth_printable(node->value));
      status = YMAP_ERR_INVALID_VALUE;
    }
  }
  YMAP_TRC(ctx, "End");
  return status;
}

// ---- operational state

uint32_t ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_leaf_lvla_ethernetinterface_layer1info_speed(
    yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  YMAP_START(ctx);
  if (node == nullptr || out == nullptr) {
    YMAP_ERR(ctx, "Invalid arguments passed!");
    return YMAP_ERR_INVALID_ARGS;
  }
  // A speed that the translator does not know has been reported by it; the leaf is then added without a value.
  const char *speed = eth_drvr_speed_enum_to_high(ctx, node);
  const uint32_t status =
      eth_add(ctx, out, "/interfaces/interface/ethernet/state/effective-speed", ETH_NS_OC_ETHERNET, speed, 1);
  YMAP_TRC(ctx, "End");
  return status;
}

uint32_t ymap_ox_oc_ethernet_openconfigifethernet_leaf_lvla_ethernet_state_effectivespeed(yfw_ctx_t *ctx,
                                                                                          yfw_node_t *node,
                                                                                          yfw_node_t *out) {
  YMAP_START(ctx);
  if (node == nullptr || out == nullptr) {
    YMAP_ERR(ctx, "Invalid arguments passed!");
    return YMAP_ERR_INVALID_ARGS;
  }
  const uint32_t status = eth_read_oper(ctx, out, "/ethernet-interface/interfaces/interface/layer1-info/speed");
  YMAP_TRC(ctx, "End");
  return status;
}

uint32_t ymap_ox_oc_ethernet_openconfigifethernet_leaf_lvla_ethernet_state_hwmacaddress(yfw_ctx_t *ctx,
                                                                                        yfw_node_t *node,
                                                                                        yfw_node_t *out) {
  YMAP_START(ctx);
  if (node == nullptr || out == nullptr) {
    YMAP_ERR(ctx, "Invalid arguments passed!");
    return YMAP_ERR_INVALID_ARGS;
  }
  const uint32_t status =
      eth_read_oper(ctx, out, "/ethernet-interface/interfaces/interface/mac-info/burned-in-mac-address");
  YMAP_TRC(ctx, "End");
  return status;
}

uint32_t ymap_ox_oc_ethernet_openconfigifethernet_cont_lvla_ethernet_state_counters(yfw_ctx_t *ctx, yfw_node_t *node,
                                                                                    uint32_t /*child_count*/,
                                                                                    yfw_node_t *out) {
  YMAP_START(ctx);
  if (node == nullptr || out == nullptr) {
    YMAP_ERR(ctx, "Invalid arguments passed!");
    return YMAP_ERR_INVALID_ARGS;
  }
  const char *name = nullptr;
  uint32_t status = eth_interface_name(ctx, &name);
  if (ymap_is_read(ctx)) {
    // Selects the statistics entry of this interface; without a name, those of all.
    status = eth_add(ctx, out, "/ethernet-interface/statistics/statistic/interface-name", ETH_NS_NATIVE_OPER, name, 0);
  }
  YMAP_TRC(ctx, "End");
  return status;
}

// ---- augments of ethernet/config

uint32_t ymap_ox_oc_ethernet_openconfigifethernet_lvla_ethernet_config_parse_augments(yfw_ctx_t *ctx, yfw_node_t *node,
                                                                                      yfw_node_t *out) {
  YMAP_START(ctx);
  if (node == nullptr || out == nullptr) {
    YMAP_ERR(ctx, "Invalid arguments passed!");
    return YMAP_ERR_INVALID_ARGS;
  }
  uint32_t status = YMAP_OK;
  if (yfw_map_do_these_match(ETH_NS_OC_AGGREGATE, node->ns) != 0) {
    status = ymap_ox_ocif_openconfigifaggregate_augment_lvla_config(ctx, node, out);
  }
  // An expanded read reaches the aggregate configuration too, for whatever node stands for the container.
  if (ctx->request->expansion_in_progress == 1 && ymap_is_read(ctx)) {
    status = ymap_ox_ocif_openconfigifaggregate_augment_lvla_config(ctx, node, out);
  }
  YMAP_TRC(ctx, "End");
  return status;
}

}  // extern "C"
