#include "writers.hpp"

namespace ymapgen {
namespace {

// A no-op that traces only its end.
void write_silent_no_op(emitter &out, const char *kind, const char *parameters) {
  out.put(R"(
uint32_t $model$_duck_map_$kind$(yfw_ctx_t *ctx, $parameters$) {
  YMAP_ASSERT(ctx);
  YMAP_TRC(ctx, "End");
  return YMAP_OK;
}
)",
          {{"kind", kind}, {"parameters", parameters}});
}

// A no-op with the frame of a mapping.
void write_framed_no_op(emitter &out, const char *kind, const char *parameters, const char *status) {
  out.put(R"(
uint32_t $model$_duck_map_$kind$(yfw_ctx_t *ctx, $parameters$) {
$start$
  YMAP_TRC(ctx, "End");
  return $status$;
}
)",
          {{"kind", kind}, {"parameters", parameters}, {"status", status}});
}

void write_no_ops(emitter &out, direction which) {
  const char *unused_node = "yfw_node_t * /*node*/, yfw_node_t * /*out*/";
  write_silent_no_op(out, "list", unused_node);
  if (which == direction::xo) {
    write_silent_no_op(out, "leaf", unused_node);
    write_silent_no_op(out, "container", "yfw_node_t * /*node*/, uint32_t /*child_count*/, yfw_node_t * /*out*/");
  } else {
    write_framed_no_op(out, "leaf", "yfw_node_t *node, yfw_node_t *out", "YMAP_NOT_MAPPED");
    write_framed_no_op(out, "container", "yfw_node_t *node, uint32_t /*child_count*/, yfw_node_t *out", "YMAP_OK");
  }
}

// Foreign nodes of a reply are dropped.
void write_reply_hook(emitter &out, const std::string &part) {
  out.put(R"(
uint32_t __$model$_lvla_$part$_parse_augments(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
$start$
  YMAP_TRC(ctx, "End");
  return YMAP_OK;
}
)",
          {{"part", part}});
}

// Foreign nodes of a request are dropped unless they add data.
void write_request_hook(emitter &out, const std::string &part) {
  out.put(R"(
uint32_t __$model$_lvla_$part$_parse_augments(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
$start$
  uint32_t status = YMAP_OK;
  if (yfw_map_is_request_add(node) != 0) {
    ymap_reject_tag(ctx, node);
    status = YMAP_ERR_UNSUPPORTED_TAG;
  }
  YMAP_TRC(ctx, "End");
  return status;
}
)",
          {{"part", part}});
}

void write_hook(emitter &out, const model &source, const std::string &part) {
  if (source.direction == direction::xo) {
    write_reply_hook(out, part);
  } else {
    write_request_hook(out, part);
  }
}

void write_mappings(emitter &out, const model &source, const std::vector<node> &nodes) {
  for (const node &next : nodes) {
    if (has_body(next)) {
      write_leaf_mapping(out, source, next);
    }
    write_mappings(out, source, next.children);
  }
}

void write_hooks(emitter &out, const model &source, const std::vector<node> &nodes) {
  for (const node &next : nodes) {
    if (next.kind != node_kind::leaf) {
      write_hook(out, source, next.part);
    }
    write_hooks(out, source, next.children);
  }
}

void write_hook_alias(emitter &out, const std::string &part) {
  out.put("YMAP_WEAK_ALIAS($model$_lvla_$part$_parse_augments, __$model$_lvla_$part$_parse_augments);\n",
          {{"part", part}});
}

void write_aliases(emitter &out, const std::vector<node> &nodes) {
  for (const node &next : nodes) {
    const std::string callback = std::string(callback_kind(next)) + "_lvla_" + next.part;
    const std::string no_op =
        std::string("duck_map_") + (next.kind == node_kind::container ? "container" : callback_kind(next));
    out.put("YMAP_WEAK_ALIAS($model$_$callback$, $body$);\n",
            {{"callback", callback},
             {"body", has_body(next) ? out.filled("__$model$_") + callback : out.filled("$model$_") + no_op}});
    if (next.kind != node_kind::leaf) {
      write_hook_alias(out, next.part);
    }
    write_aliases(out, next.children);
  }
}

}  // namespace

std::string auto_text(const model &source) {
  emitter out = begin_file(source);
  write_includes(out, source, source.includes);
  write_no_ops(out, source.direction);
  write_mappings(out, source, source.tops);
  if (!source.augmented.empty()) {
    write_hook(out, source, source.augmented);
  }
  write_hooks(out, source, source.tops);
  out.put("\n// Plain names.\n");
  if (!source.augmented.empty()) {
    write_hook_alias(out, source.augmented);
  }
  write_aliases(out, source.tops);
  return out.text();
}

}  // namespace ymapgen
