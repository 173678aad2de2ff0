// Leaf mappings: what a leaf adds to the output.
#include "writers.hpp"

namespace ymapgen {
namespace {

// The call that adds a path. `value` and `source` are expressions.
std::string add_text(const emitter &out, const target_path &target, const std::string &value,
                     const std::string &source) {
  return out.filled(
      R"(yfw_map_datatree_add_path_flagged(ctx, out, "$path$", "$target_ns$", $value$, $source$, nullptr, 0, $flag$))",
      {{"path", target.path},
       {"target_ns", target.ns},
       {"value", value},
       {"source", source},
       {"flag", std::to_string(target.flag)}});
}

std::string value_text(const node &leaf) {
  return leaf.translator.empty() ? "node->value" : leaf.translator + "(ctx, node)";
}

void write_add(emitter &out, const node &leaf) {
  out.put("  const uint32_t status = $add$;\n", {{"add", add_text(out, leaf.targets[0], value_text(leaf), "nullptr")}});
}

// Configuration always, if wanted, and state beside it in a read of both, whose status then counts.
void write_report(emitter &out, const model &source, const node &leaf) {
  out.put(R"(  uint32_t status = YMAP_OK;
  if ($wanted$(ctx->request)) {
    status = $config$;
  }
  if (ymap_is_read_all(ctx)) {
    status = $state$;
  }
)",
          {{"wanted", source.wanted},
           {"config", add_text(out, leaf.targets[0], value_text(leaf), "nullptr")},
           {"state", add_text(out, leaf.targets[1], value_text(leaf), "nullptr")}});
}

void write_set(emitter &out, const node &leaf) {
  out.put(R"(  // A read has neither source nor value, a delete no value.
  yfw_node_t *source = ymap_is_read(ctx) ? nullptr : node;
  const bool has_value = source != nullptr && yfw_map_is_request_delete(node) == 0;
  const char *value = has_value ? $value$ : nullptr;
  const uint32_t status = $add$;
)",
          {{"value", value_text(leaf)}, {"add", add_text(out, leaf.targets[0], "value", "source")}});
}

void write_read(emitter &out, const node &leaf) {
  out.put("  uint32_t status = YMAP_OK;\n");
  for (int i = 0; i < (leaf.is_twice ? 2 : 1); ++i) {
    out.put(R"(  if (ymap_is_read(ctx)) {
    status = $add$;
  }
)",
            {{"add", add_text(out, leaf.targets[0], "nullptr", "nullptr")}});
  }
}

}  // namespace

void write_leaf_mapping(emitter &out, const model &source, const node &leaf) {
  out.put(R"(
uint32_t __$model$_leaf_lvla_$part$(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
$start$
)",
          {{"part", leaf.part}});
  switch (leaf.action) {
    case action::add:
      write_add(out, leaf);
      break;
    case action::report:
      write_report(out, source, leaf);
      break;
    case action::set:
      write_set(out, leaf);
      break;
    case action::read:
      write_read(out, leaf);
      break;
    case action::manual:
      out.put("  const uint32_t status = $model$_man_leaf_lvla_$part$(ctx, node, out);\n", {{"part", leaf.part}});
      break;
    default:
      out.put("  const uint32_t status = YMAP_NOT_MAPPED;\n");
      break;
  }
  out.put(R"(  YMAP_TRC(ctx, "End");
  return status;
}
)");
}

}  // namespace ymapgen
