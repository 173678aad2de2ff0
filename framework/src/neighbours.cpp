// Stand-ins for the plug-ins that are loaded beside the mapped one on a device.
#include "yfw.h"
#include "ymap_frame.h"

// Maps nothing and says so: a read names the leaf as not mapped, a write is refused.
uint32_t ymap_ox_ocif_openconfigifaggregate_augment_lvla_config(yfw_ctx_t * /*ctx*/, yfw_node_t * /*node*/,
                                                                yfw_node_t * /*out*/) {
  return YMAP_NOT_MAPPED;
}
