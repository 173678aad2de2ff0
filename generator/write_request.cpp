// Walkers of requests: they reject what they do not know, and a container that stands for all of its leaves is handed
// to each of them.
#include "writers.hpp"

#include <algorithm>

namespace ymapgen {
namespace {

// The condition under which a container that is being expanded reaches a child; empty: always. What is no configuration
// is never deleted.
std::string guard_of(const node &child, bool is_config_container) {
  if (child.is_read_all) {
    return "ymap_is_read_all(ctx)";
  }
  return is_config_container && !child.is_config ? "ymap_is_read(ctx)" : "";
}

// Neighbours that are reached under the same condition and in the same way.
struct group {
  std::string guard;
  bool is_relaxed = false;  // configuration: a delete reaches it as a removal
  std::vector<std::string> parts;
};

std::vector<group> groups_of(const std::vector<node> &children, bool is_config_container) {
  std::vector<group> groups;
  for (const node &next : children) {
    const std::string guard = guard_of(next, is_config_container);
    const bool is_relaxed = is_config_container && next.is_config;
    if (groups.empty() || groups.back().guard != guard || groups.back().is_relaxed != is_relaxed) {
      groups.push_back({guard, is_relaxed, {}});
    }
    groups.back().parts.push_back(next.part);
  }
  return groups;
}

void write_group(emitter &out, const group &children, const std::string &indent) {
  if (children.is_relaxed) {
    out.put("$indent$const bool is_relaxed = ymap_relax_delete(node);\n", {{"indent", indent}});
  }
  for (const std::string &part : children.parts) {
    out.put("$indent$(void)$model$_lvla_$part$(ctx, node, out);\n", {{"indent", indent}, {"part", part}});
  }
  if (children.is_relaxed) {
    out.put("$indent$ymap_restore_delete(node, is_relaxed);\n", {{"indent", indent}});
  }
}

// Calls every child with the container itself, in order, statuses ignored.
void write_expansion(emitter &out, const std::vector<node> &children, bool is_config_container,
                     const std::string &indent) {
  const std::vector<group> groups = groups_of(children, is_config_container);
  const auto is_bare = [](const group &next) { return next.guard.empty() && next.is_relaxed; };
  const bool needs_scopes = std::count_if(groups.begin(), groups.end(), is_bare) > 1;
  for (const group &next : groups) {
    const std::string condition = next.guard.empty() ? "" : "if (" + next.guard + ") ";
    const bool has_scope = !condition.empty() || needs_scopes;
    out.put(has_scope ? indent + condition + "{\n" : "");
    write_group(out, next, has_scope ? indent + "  " : indent);
    out.put(has_scope ? indent + "}\n" : "");
  }
}

void write_leaf_wrapper(emitter &out, const node &leaf) {
  out.put(R"(
static uint32_t $model$_lvla_$part$(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
$start$
  const uint32_t status = $model$_leaf_lvla_$part$(ctx, node, out);
  ymap_mark_leaf(ctx, node);
  YMAP_TRC(ctx, "End");
  return status;
}
)",
          {{"part", leaf.part}});
}

void write_expander(emitter &out, const node &what) {
  out.put(R"(
static void expand_$part$(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  const bool is_nested = ymap_begin_expansion(ctx);
)",
          {{"part", what.part}});
  write_expansion(out, what.children, what.is_config, "  ");
  out.put(R"(  (void)$model$_lvla_$part$_parse_augments(ctx, node, out);
  ymap_end_expansion(ctx, is_nested);
}
)",
          {{"part", what.part}});
}

void write_request_container(emitter &out, const node &what, const std::string &linkage) {
  out.put(R"(
$linkage$uint32_t $model$_lvla_$part$(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
$start$
  if (ymap_is_bad_tree(node)) {
    YMAP_ERR(ctx, "Failed to get subtrees!");
    YMAP_TRC(ctx, "End");
    return YMAP_ERR_BAD_TREE;
  }
  uint32_t status = YMAP_OK;
  ymap_container_walk walk = ymap_enter_container(ctx, node);
  for (uint32_t pass = 0; pass < walk.pass_count; ++pass) {
    const uint32_t child_count = ymap_begin_pass(ctx, node, &walk, pass);
    if (status == YMAP_OK) {
      status = $model$_cont_lvla_$part$(ctx, node, child_count, out);
    }
    for (uint32_t i = 0; i < child_count && status == YMAP_OK; ++i) {
      yfw_node_t *child = &node->children[i];
      if (child->tag == nullptr) {
        YMAP_ERR(ctx, "Tag name is not available!");
        status = YMAP_ERR_BAD_TREE;
      } else $dispatch$if (yfw_map_do_these_match("$ns$", child->ns) != 0) {
        YMAP_ERR(ctx, "Unsupported tag is specified in the request.");
        ymap_reject_tag(ctx, child);
        status = YMAP_ERR_INVALID_VALUE;
      } else {
        status = $model$_lvla_$part$_parse_augments(ctx, child, out);
      }
    }
    if (ymap_stands_for_all(ctx, child_count) && $is_reached$) {
      expand_$part$(ctx, node, out);
    }
    ymap_end_pass(ctx, node, &walk);
  }
  ymap_leave_container(ctx, node, &walk);
  YMAP_TRC(ctx, "End");
  return status;
}
)",
          {{"linkage", linkage},
           {"part", what.part},
           {"dispatch", dispatch_text(out, what.children, "child", "      ")},
           {"is_reached", what.is_config ? "ymap_is_read_or_delete(ctx, node)" : "ymap_is_read(ctx)"}});
}

}  // namespace

void write_request_walkers(emitter &out, const model &source, const node &what) {
  for (const node &child : what.children) {
    write_request_walkers(out, source, child);
  }
  if (what.kind == node_kind::leaf) {
    write_leaf_wrapper(out, what);
  } else {
    write_expander(out, what);
    write_request_container(out, what, linkage_of(source, what));
  }
}

void write_request_entry(emitter &out, const model &source) {
  out.put(R"(
uint32_t $model$_augment_lvla_$augmented$(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
$start$
  if (ymap_is_bad_tree(node)) {
    YMAP_ERR(ctx, "Failed to get subtrees!");
    YMAP_TRC(ctx, "End");
    return YMAP_ERR_BAD_TREE;
  }
  uint32_t status = YMAP_OK;
  const uint32_t child_count = ymap_child_count(node);
  if (node->tag == nullptr) {
    YMAP_ERR(ctx, "Tag name is not available!");
  }
  YMAP_TRC(ctx, "Processing tag '%s'", node->tag);
  $dispatch$if (yfw_map_do_these_match("$ns$", node->ns) != 0) {
    YMAP_ERR(ctx, "Unsupported tag is specified in the request.");
    ymap_reject_tag(ctx, node);
    status = YMAP_ERR_INVALID_VALUE;
  } else {
    status = $model$_lvla_$augmented$_parse_augments(ctx, node, out);
  }
  if (status == YMAP_OK && child_count == 0 && ymap_is_read_or_delete(ctx, node)) {
)",
          {{"augmented", source.augmented}, {"dispatch", dispatch_text(out, source.tops, "node", "  ")}});
  write_expansion(out, source.tops, true, "    ");
  out.put(R"(    (void)$model$_lvla_$augmented$_parse_augments(ctx, node, out);
  }
  YMAP_TRC(ctx, "End");
  return status;
}
)",
          {{"augmented", source.augmented}});
}

}  // namespace ymapgen
