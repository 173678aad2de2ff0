#include "data_builder.hpp"

#include <libyang/libyang.h>

#include <algorithm>

#include "yfw/node.hpp"
#include "ymap_status.h"

namespace yfw {

static bool is_any_uint64(const lysc_node *leaf) {
  const lysc_type *type = is_leaf(leaf) ? reinterpret_cast<const lysc_node_leaf *>(leaf)->type : nullptr;
  return type != nullptr && type->basetype == LY_TYPE_UINT64 &&
         reinterpret_cast<const lysc_type_num *>(type)->range == nullptr;
}

// Whether this is the canonical text of a leaf of type uint64, as most of a reply is, found without libyang.
static bool is_counter_value(const lysc_node *leaf, std::string_view text) {
  constexpr size_t always_fits = 19;
  const bool is_number = !text.empty() && text.size() <= always_fits && (text[0] != '0' || text.size() == 1) &&
                         std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
  return is_number && is_any_uint64(leaf);
}

// The list nearest above step `count - 1`, or null.
const lysc_node *data_builder::innermost_list(const schema_steps &steps, size_t count) {
  while (count > 0 && !is_list(steps[count - 1])) {
    --count;
  }
  return count > 0 ? steps[count - 1] : nullptr;
}

// The current list entry, or the one above it, that is an entry of `list`; null when there is none.
data_node *data_builder::enclosing(const context &ctx, const lysc_node *list) const {
  const yfw_node_t *current = ctx.record.current_list;
  data_node *node = current != nullptr ? reinterpret_cast<const entered *>(current)->data : nullptr;
  while (node != nullptr && node->schema != list) {
    node = node->parent;
  }
  return node;
}

uint32_t data_builder::add_path(context &ctx, std::string_view path, const char *ns, const char *value,
                                yfw_node_t * /*source*/, yfw_node_t **created, uint32_t /*flag*/) {
  const schema_steps &steps = paths_.steps(path, ns);
  if (steps.empty()) {
    return ctx.fail("the modules have no path '" + std::string(path) + "' in namespace '" + ns + "'");
  }
  if (created != nullptr) {
    *created = nullptr;
  }
  const lysc_node *list = innermost_list(steps, steps.size());
  data_node *node = list != nullptr ? enclosing(ctx, list) : nullptr;
  if (list != nullptr && node == nullptr) {
    return ctx.fail("no entry of list '" + yfw::path(list) + "' is current for '" + std::string(path) + "'");
  }
  if (value == nullptr) {
    const bool known = !ctx.problems.empty() && ctx.problems.back().compared == ctx.compared;
    if (!known) {
      ctx.report("no value for '" + std::string(path) + "'");
    }
    return YMAP_OK;
  }
  auto step = std::find(steps.begin(), steps.end(), list);
  for (step = step == steps.end() ? steps.begin() : step + 1; step != steps.end(); ++step) {
    node = is_leaf_list(*step) ? &tree_.item(node, yfw::ns(*step), name(*step), value) : &tree_.at(node, *step);
  }
  if (node != nullptr) {
    set_value(ctx, *node, value);
  }
  return YMAP_OK;
}

// A value that the client model does not allow is worth more to a client than none, so it is kept with a note.
void data_builder::set_value(context &ctx, data_node &leaf, std::string_view value) {
  if (!checks_values_ || is_counter_value(leaf.schema, value)) {
    tree_.set_value(leaf, value);
    return;
  }
  const checked_value checked = tree_.modules().check_value(leaf.schema, value);
  tree_.set_value(leaf, checked.ok ? std::string_view(checked.canonical) : value);
  if (!checked.ok) {
    ctx.report_kept("is kept, although '" + yfw::path(leaf.schema) +
                    "' does not allow it: " + to_string(checked.rejected));
  }
}

uint32_t data_builder::enter_list(context &ctx, yfw_node_t **current_list, std::string_view path, const char *key_text,
                                  const char *key_name) {
  if (!wanted_.empty()) {
    if (std::find(wanted_.begin(), wanted_.end(), key_text) == wanted_.end()) {
      return YMAP_ERR_NO_MATCH;
    }
    entered_names_.insert(key_text);
  }
  const schema_steps &steps = paths_.steps(path, ctx.description);
  if (steps.empty() || !is_list(steps.back())) {
    return ctx.fail("the modules have no list '" + std::string(path) + "'");
  }
  const lysc_node *outer = innermost_list(steps, steps.size() - 1);
  data_node *node = outer != nullptr ? enclosing(ctx, outer) : nullptr;
  auto step = std::find(steps.begin(), steps.end(), outer);
  for (step = step == steps.end() ? steps.begin() : step + 1; step + 1 != steps.end(); ++step) {
    node = &tree_.at(node, *step);
  }
  const yfw::key_value key{key_name, key_text};
  data_node &entry = tree_.entry(node, ns(steps.back()), name(steps.back()), {&key, 1});
  entered *&known = known_[&entry];
  if (known == nullptr) {
    known = &entered_.emplace_back(entered{yfw_node_t{}, &entry});
    known->node.tag = entry.tag.data();
    known->node.ns = entry.ns.data();
  }
  *current_list = &known->node;
  return YMAP_OK;
}

}  // namespace yfw
