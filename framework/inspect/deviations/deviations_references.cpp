#include <algorithm>

#include "deviations_internal.hpp"
#include "yfw/error.hpp"
#include "yfw/internal/schema_types.hpp"

namespace yfw {
namespace {

std::string verb(deviate_kind kind) {
  return kind == deviate_kind::not_supported ? "cannot be removed: " : "cannot become operational state: ";
}

std::string default_of(const lysc_node *leaf) {
  const lyd_value *value = is_leaf(leaf) ? as<lysc_node_leaf>(leaf).dflt : nullptr;
  return value == nullptr ? "" : lyd_value_get_canonical(leaf->module->ctx, value);
}

}  // namespace

model_references::model_references(const schema &modules) {
  std::vector<const lysc_node *> open = modules.children(nullptr);
  while (!open.empty()) {
    const lysc_node *node = open.back();
    open.pop_back();
    add(node);
    // Choices and cases are no data nodes, but have conditions.
    for (const lysc_node *above = node->parent; above != nullptr && (above->nodetype & (LYS_CHOICE | LYS_CASE)) != 0;
         above = above->parent) {
      add(above);
    }
    const auto &below = modules.children(node);
    open.insert(open.end(), below.begin(), below.end());
  }
}

void model_references::add(const lysc_node *node) {
  for (const lysc_must *must : array_items(static_cast<const lysc_must *>(lysc_node_musts(node)))) {
    add_atoms(node, node, must->cond, must->prefixes, "must");
  }
  for (lysc_when *const *when : array_items(static_cast<lysc_when *const *>(lysc_node_when(node)))) {
    add_atoms(node, (*when)->context, (*when)->cond, (*when)->prefixes, "when");
  }
  if (holds_value(node)) {
    add_type(node, is_leaf(node) ? as<lysc_node_leaf>(node).type : as<lysc_node_leaflist>(node).type);
  }
}

void model_references::add_type(const lysc_node *node, const lysc_type *type) {
  if (type->basetype == LY_TYPE_LEAFREF) {
    const auto &leafref = as<lysc_type_leafref>(type);
    add_atoms(node, node, leafref.path, leafref.prefixes, "leafref");
  } else if (type->basetype == LY_TYPE_UNION) {
    for (const auto *member : array_items(as<lysc_type_union>(type).types)) {
      add_type(node, *member);
    }
  }
}

void model_references::add_atoms(const lysc_node *from, const lysc_node *context, const lyxp_expr *expression,
                                 const lysc_prefix *prefixes, const char *kind) {
  ly_set *found = nullptr;
  if (lys_find_expr_atoms(context, from->module, expression, prefixes, 0, &found) != LY_SUCCESS) {
    return;  // libyang does not evaluate it either
  }
  const std::unique_ptr<ly_set, set_deleter> atoms(found);
  for (uint32_t i = 0; i < atoms->count; ++i) {
    references_.push_back({from, atoms->snodes[i], kind});
  }
}

std::string model_references::conflict_of(const deviation &wanted, const std::vector<deviation> &all) const {
  const lysc_node *target = wanted.target;
  if (wanted.kind == deviate_kind::values) {
    const std::string default_value = default_of(target);
    const bool is_left = default_value.empty() ||
                         std::find(wanted.values.begin(), wanted.values.end(), default_value) != wanted.values.end();
    return is_left ? "" : "its default " + in_quotes(default_value) + " is rejected";
  }
  if (is_key(target)) {
    return verb(wanted.kind) + "it is a key of " + in_quotes(schema_path(target->parent));
  }
  if ((target->flags & LYS_MAND_TRUE) != 0) {
    return verb(wanted.kind) + "it is mandatory";
  }
  const auto is_removed = [&](const lysc_node *node) {
    return std::any_of(all.begin(), all.end(), [&](const deviation &each) {
      return each.kind == deviate_kind::not_supported && is_within(node, each.target);
    });
  };
  for (const reference &each : references_) {
    const bool stays = wanted.kind == deviate_kind::not_supported ? !is_removed(each.from) : is_config(each.from);
    if (is_within(each.to, target) && !is_within(each.from, target) && stays) {
      return verb(wanted.kind) + "the " + each.kind + " of " + in_quotes(schema_path(each.from)) + " refers to it";
    }
  }
  return "";
}

}  // namespace yfw
