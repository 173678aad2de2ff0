// The inside of a schema, shared by its sources.
#pragma once

#include <libyang/libyang.h>

#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "yfw/schema.hpp"

namespace yfw {

struct child_name {
  const lysc_node *parent;
  std::string_view name;
  bool operator==(const child_name &) const = default;
};

struct child_name_hash {
  size_t operator()(const child_name &key) const {
    const size_t parent = std::hash<const void *>()(key.parent);
    return std::hash<std::string_view>()(key.name) ^ (parent * 0x9e3779b97f4a7c15U);
  }
};

// Of identityrefs the identities that they allow.
using identity_table = std::unordered_map<const lysc_type *, std::vector<const lysc_ident *>>;

struct context_deleter {
  void operator()(ly_ctx *context) const {
    ly_ctx_destroy(context);
  }
};

struct schema::parts {
  std::unique_ptr<ly_ctx, context_deleter> context;
  std::vector<std::string_view> modules;
  std::unordered_map<const lysc_node *, std::vector<const lysc_node *>> children;  // of null: the top
  std::unordered_multimap<child_name, const lysc_node *, child_name_hash> by_name;
  std::unordered_map<std::string_view, std::string_view> ns_by_module;
  std::unordered_map<std::string_view, std::string_view> module_by_ns;

  // The identities that each identityref of the modules allows, members of unions included.
  identity_table identities;

  // Fills the tables from the compiled modules of `context`.
  void index();

 private:
  void index_children(const lysc_node *parent, const lysc_module *module);
  void index_identities(const lysc_type *type);
};

// libyang's counted arrays as ranges.
template <typename T>
std::vector<const T *> array_items(const T *array) {
  std::vector<const T *> items;
  LY_ARRAY_COUNT_TYPE i = 0;
  LY_ARRAY_FOR(array, i) {
    items.push_back(&array[i]);
  }
  return items;
}

}  // namespace yfw
