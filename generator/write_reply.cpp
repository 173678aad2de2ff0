// Walkers of replies and native configuration: they visit what is there and ignore what they do not know.
#include "writers.hpp"

namespace ymapgen {
namespace {

void write_leaf_visit(emitter &out, const node &leaf) {
  out.put(R"(
static uint32_t $model$_lvla_$part$(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
$start$
  const uint32_t status = $model$_leaf_lvla_$part$(ctx, node, out);
  YMAP_TRC(ctx, "End");
  return status;
}
)",
          {{"part", leaf.part}});
}

// The function of a container or list entry up to its children count.
void write_opening(emitter &out, const node &what, const std::string &linkage) {
  out.put(R"(
$linkage$uint32_t $model$_lvla_$part$(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
$start$
  if (ymap_is_bad_tree(node)) {
    YMAP_ERR(ctx, "Failed to get subtrees!");
    YMAP_TRC(ctx, "End");
    return YMAP_ERR_BAD_TREE;
  }
  const uint32_t child_count = ymap_child_count(node);
)",
          {{"linkage", linkage}, {"part", what.part}});
}

void write_children_loop(emitter &out, const node &what) {
  out.put(R"(  for (uint32_t i = 0; i < child_count && status == YMAP_OK; ++i) {
    yfw_node_t *child = &node->children[i];
    if (child->tag == nullptr) {
      YMAP_ERR(ctx, "Tag name is not available!");
      status = YMAP_ERR_BAD_TREE;
    } else $dispatch$if (yfw_map_do_these_match("$ns$", child->ns) != 0) {
      YMAP_TRC(ctx, "Unsupported tag. Ignoring.");
    } else {
      status = $model$_lvla_$part$_parse_augments(ctx, child, out);
    }
  }
)",
          {{"part", what.part}, {"dispatch", dispatch_text(out, what.children, "child", "    ")}});
}

void write_reply_container(emitter &out, const node &what, const std::string &linkage) {
  write_opening(out, what, linkage);
  out.put(R"(  yfw_map_add_to_node_hierarchy(ctx, node, YFW_LEVEL_CONTAINER);
  uint32_t status = $model$_cont_lvla_$part$(ctx, node, child_count, out);
)",
          {{"part", what.part}});
  write_children_loop(out, what);
  out.put(R"(  yfw_map_remove_from_node_hierarchy(ctx, node);
  YMAP_TRC(ctx, "End");
  return status;
}
)");
}

void write_list_entry(emitter &out, const node &what) {
  write_opening(out, what, "static ");
  out.put(R"(  if (child_count == 0) {
    YMAP_ERR(ctx, "No keys specified with a list node.");
  }
  yfw_map_add_to_node_hierarchy(ctx, node, YFW_LEVEL_LIST_ENTRY);
  uint32_t status = yfw_map_update_current_list_node(ctx, "$path$");
  if (status == YMAP_OK) {
    status = $model$_list_lvla_$part$(ctx, node, out);
    if (status == YMAP_ERR_NO_MATCH) {
      yfw_map_remove_from_node_hierarchy(ctx, node);
      YMAP_TRC(ctx, "End");
      return status;
    }
  }
  const uint8_t count_before = ctx->request->output_list_count;
  yfw_add_to_output_list_ctx(ctx, node, out);
  const bool is_registered = ctx->request->output_list_count > count_before;
)",
          {{"path", what.path}, {"part", what.part}});
  write_children_loop(out, what);
  out.put(R"(  yfw_map_remove_from_node_hierarchy(ctx, node);
  if (is_registered) {
    yfw_remove_from_output_list_ctx(ctx, node, out);
  }
  YMAP_TRC(ctx, "End");
  return status;
}
)");
}

}  // namespace

void write_reply_walkers(emitter &out, const model &source, const node &what) {
  for (const node &child : what.children) {
    write_reply_walkers(out, source, child);
  }
  switch (what.kind) {
    case node_kind::container:
      write_reply_container(out, what, linkage_of(source, what));
      break;
    case node_kind::list:
      write_list_entry(out, what);
      break;
    case node_kind::leaf:
      write_leaf_visit(out, what);
      break;
  }
}

void write_reply_entry(emitter &out, const model &source) {
  out.put(R"(
uint32_t $model$_augment_lvla_$augmented$(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
$start$
  if (ymap_is_bad_tree(node)) {
    YMAP_ERR(ctx, "Failed to get subtrees!");
    YMAP_TRC(ctx, "End");
    return YMAP_ERR_BAD_TREE;
  }
  uint32_t status = YMAP_OK;
  if (node->tag == nullptr) {
    YMAP_ERR(ctx, "Tag name is not available!");
    status = YMAP_ERR_BAD_TREE;
  }
  YMAP_TRC(ctx, "Processing tag '%s'", node->tag);
  $dispatch$if (yfw_map_do_these_match("$ns$", node->ns) != 0) {
    YMAP_TRC(ctx, "Unsupported tag. Ignoring.");
  } else {
    status = $model$_lvla_$augmented$_parse_augments(ctx, node, out);
  }
  YMAP_TRC(ctx, "End");
  return status;
}
)",
          {{"augmented", source.augmented}, {"dispatch", dispatch_text(out, source.tops, "node", "  ")}});
}

}  // namespace ymapgen
