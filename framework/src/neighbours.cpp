// Stand-ins for the plug-ins that are loaded beside the mapped one on a device.
#include "context.hpp"
#include "ymap_frame.h"

// Maps nothing and says so: a read names the leaf as not mapped, a write is refused.
uint32_t ymap_ox_ocif_openconfigifaggregate_augment_lvla_config(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  const char *name = __func__;
  return yfw::observed(
      yfw::context_of(ctx), [] { return YMAP_NOT_MAPPED; },
      [&] {
        return yfw::abi_call{name, {{"node", node}, {"out", out}}};
      });
}
