// Custom functions with the faults that `ymap check` finds.
#include "yfw.h"

// The ABI version that this was compiled for: one that no framework has.
__attribute__((section("ymap.abi"), used)) static const char abi_version[] = "99";

static unsigned calls_so_far = 0;

#pragma GCC visibility push(default)
extern "C" {

uint32_t yfw_map_no_such_call(yfw_ctx_t *ctx);

// Replaces the generated body.
uint32_t ymap_xo_demo_shop_leaf_lvla_shelf_price(yfw_ctx_t *ctx, yfw_node_t * /*node*/, yfw_node_t * /*out*/) {
  return ++calls_so_far > 3 ? yfw_map_no_such_call(ctx) : 0;
}

// Should replace ..._shelf_label, ..._list_lvla_shelf and, of a node that is not there, nothing.
uint32_t ymap_xo_demo_shop_leaf_lvla_shelf_lable(yfw_ctx_t * /*ctx*/, yfw_node_t * /*node*/, yfw_node_t * /*out*/) {
  return 0;
}
uint32_t ymap_xo_demo_shop_cont_lvla_shelf(yfw_ctx_t * /*ctx*/, yfw_node_t * /*node*/, yfw_node_t * /*out*/) {
  return 0;
}
uint32_t ymap_xo_demo_shop_leaf_lvla_shelf_discount(yfw_ctx_t * /*ctx*/, yfw_node_t * /*node*/, yfw_node_t * /*out*/) {
  return 0;
}

uint32_t ymap_ox_demo_wrong(yfw_ctx_t * /*ctx*/) {
  return 0;
}

}  // extern "C"
#pragma GCC visibility pop
