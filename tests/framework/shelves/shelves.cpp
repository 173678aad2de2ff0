// A mapping of a library's shelves to themselves: a leaf-list that clients read and edit. No client has a shelf 13.
#include <cstring>

#include "ymap_frame.h"

namespace {

bool is_shelf(const yfw_node_t &leaf) {
  return yfw_map_do_these_match(leaf.tag, "shelf") != 0;
}

void add_shelf(yfw_ctx_t *ctx, yfw_node_t *out, const char *value, yfw_node_t *source) {
  (void)yfw_map_datatree_add_path_flagged(ctx, out, "/library/shelf", "urn:test:library", value, source, nullptr, 0, 1);
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

uint32_t shelves_of_request(yfw_ctx_t *ctx, yfw_node_t *library, yfw_node_t *out) {
  const bool is_edit = ctx->request->request->operation == YFW_REQUEST_WRITE;
  for (yfw_node_t *leaf = library->children; leaf != library->children + library->child_count; ++leaf) {
    if (is_shelf(*leaf)) {
      const bool is_set = is_edit && yfw_map_is_request_delete(leaf) == 0;
      add_shelf(ctx, out, is_set ? leaf->value : nullptr, is_edit ? leaf : nullptr);
    }
  }
  return YMAP_OK;
}

uint32_t shelves_of_reply(yfw_ctx_t *ctx, yfw_node_t *library, yfw_node_t *out) {
  for (yfw_node_t *leaf = library->children; leaf != library->children + library->child_count; ++leaf) {
    if (is_shelf(*leaf) && std::strcmp(leaf->value, "13") == 0) {
      return YMAP_ERR_INVALID_VALUE;
    }
    if (is_shelf(*leaf)) {
      add_shelf(ctx, out, leaf->value, nullptr);
    }
  }
  return YMAP_OK;
}

}  // extern "C"
#pragma GCC visibility pop
