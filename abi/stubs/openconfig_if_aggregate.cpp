// The entry point of the plug-in for openconfig-if-aggregate, which is loaded beside others on a device and which yfw.h
// makes part of the contract. This stub stands in for it where that plug-in is not loaded.
#include "yfw/internal/context.hpp"
#include "ymap_status.h"

// Maps nothing and says so: a read names the leaf as not mapped, a write is refused.
uint32_t ymap_ox_ocif_openconfigifaggregate_augment_lvla_config(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  const char *name = __func__;
  return yfw::observed(
      yfw::context_of(ctx), [] { return YMAP_NOT_MAPPED; },
      [&] {
        return yfw::abi_call{yfw::abi_function::stub, name, {{"node", node}, {"out", out}}};
      });
}
