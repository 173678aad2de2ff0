// What a generator could have written for a model of two leaves, a list and a hook.
#include "ymap_generated.h"

#pragma GCC visibility push(default)
extern "C" {
ymap_node_function ymap_xo_demo_shop_leaf_lvla_shelf_label;
ymap_node_function ymap_xo_demo_shop_leaf_lvla_shelf_price;
ymap_node_function ymap_xo_demo_shop_list_lvla_shelf;

uint32_t ymap_xo_demo_shop_duck_map_list(yfw_ctx_t * /*ctx*/, yfw_node_t * /*node*/, yfw_node_t * /*out*/) {
  return 0;
}

uint32_t __ymap_xo_demo_shop_leaf_lvla_shelf_label(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  return yfw_map_datatree_add_path_flagged(ctx, out, "/label", "urn:demo", node->value, nullptr, nullptr, 0, 1);
}
YMAP_WEAK_ALIAS(ymap_xo_demo_shop_leaf_lvla_shelf_label, __ymap_xo_demo_shop_leaf_lvla_shelf_label);

uint32_t __ymap_xo_demo_shop_leaf_lvla_shelf_price(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  return yfw_map_datatree_add_path_flagged(ctx, out, "/price", "urn:demo", node->value, nullptr, nullptr, 0, 1);
}
YMAP_WEAK_ALIAS(ymap_xo_demo_shop_leaf_lvla_shelf_price, __ymap_xo_demo_shop_leaf_lvla_shelf_price);

YMAP_WEAK_ALIAS(ymap_xo_demo_shop_list_lvla_shelf, ymap_xo_demo_shop_duck_map_list);

uint32_t ymap_xo_demo_shop_lvla_shop(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  const uint32_t status = ymap_xo_demo_shop_list_lvla_shelf(ctx, node, out);
  const uint32_t label = ymap_xo_demo_shop_leaf_lvla_shelf_label(ctx, node, out);
  return status | label | ymap_xo_demo_shop_leaf_lvla_shelf_price(ctx, node, out);
}

}  // extern "C"
#pragma GCC visibility pop
