#include "yfw/internal/schema_types.hpp"

#include <algorithm>

#include "yfw/internal/schema_internal.hpp"

namespace yfw {

static const lysc_type *target(const lysc_type *type) {
  return type->basetype == LY_TYPE_LEAFREF ? as<lysc_type_leafref>(type).realtype : type;
}

const lysc_type *type_of(const lysc_node *leaf) {
  const lysc_type *type = is_leaf(leaf)        ? as<lysc_node_leaf>(leaf).type
                          : is_leaf_list(leaf) ? as<lysc_node_leaflist>(leaf).type
                                               : nullptr;
  return type == nullptr ? nullptr : target(type);
}

std::vector<const lysc_type *> members(const lysc_type *type) {
  std::vector<const lysc_type *> result;
  for (const auto *member : array_items(as<lysc_type_union>(type).types)) {
    result.push_back(target(*member));
  }
  return result;
}

static bool is_derived(const lysc_ident *identity, const lysc_ident *base) {
  return std::ranges::any_of(array_items(base->derived),
                             [&](const auto *each) { return *each == identity || is_derived(identity, *each); });
}

static void add_identities(const lysc_type *type, const lysc_ident *base, std::vector<const lysc_ident *> &found) {
  const auto bases = array_items(as<lysc_type_identityref>(type).bases);
  for (const auto *each : array_items(base->derived)) {
    const bool is_allowed = std::ranges::all_of(bases, [&](const auto *any) { return is_derived(*each, *any); });
    if (is_allowed && std::ranges::find(found, *each) == found.end()) {
      found.push_back(*each);
    }
    add_identities(type, *each, found);
  }
}

std::vector<const lysc_ident *> identities(const lysc_type *type) {
  std::vector<const lysc_ident *> found;
  add_identities(type, as<lysc_type_identityref>(type).bases[0], found);
  return found;
}

static void add_names(const lysc_type *type, std::vector<std::string> &names) {
  switch (type->basetype) {
    case LY_TYPE_ENUM:
      for (const auto *item : array_items(as<lysc_type_enum>(type).enums)) {
        names.emplace_back(item->name);
      }
      break;
    case LY_TYPE_BITS:
      for (const auto *item : array_items(as<lysc_type_bits>(type).bits)) {
        names.emplace_back(item->name);
      }
      break;
    case LY_TYPE_IDENT:
      for (const lysc_ident *identity : identities(type)) {
        names.emplace_back(identity->name);
      }
      break;
    case LY_TYPE_BOOL:
      names.insert(names.end(), {"true", "false"});
      break;
    case LY_TYPE_UNION:
      for (const lysc_type *member : members(type)) {
        add_names(member, names);
      }
      break;
    default:
      break;
  }
}

std::vector<std::string> value_names(const lysc_type *type) {
  std::vector<std::string> names;
  add_names(type, names);
  return names;
}

}  // namespace yfw
