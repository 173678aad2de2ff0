// The calls of the ABI that read the input tree and keep the node hierarchy.
#include <algorithm>
#include <cstring>

#include "yfw/internal/context.hpp"
#include "yfw/node.hpp"

using yfw::abi_call;
using yfw::abi_function;
using yfw::active_context;
using yfw::context;
using yfw::context_of;
using yfw::observed;

namespace {

bool writes(const context &ctx) {
  const uint32_t operation = ctx.record.request->operation;
  return operation != YFW_REQUEST_READ_CONFIG && operation != YFW_REQUEST_READ_ALL;
}

// Whether the running request writes and `node` carries an operation from `first` to `last`.
uint32_t is_write_between(const yfw_node_t *node, uint32_t first, uint32_t last) {
  const context *ctx = active_context();
  return ctx != nullptr && writes(*ctx) && node->operation >= first && node->operation <= last ? 1 : 0;
}

void remember(yfw::compared_texts &compared, const char *text) {
  for (size_t i = compared.size() - 1; i > 0; --i) {
    compared[i] = compared[i - 1];
  }
  compared[0] = text;
}

[[gnu::noinline]] uint32_t is_same_text(const char *first, const char *second) {
  return std::strcmp(first, second) == 0 ? 1 : 0;
}

uint32_t key_of_open_entry(context &self, const char *list_path, const char *key_name, const char **value) {
  const yfw_node_t *entry = self.open_entry(list_path);
  if (entry == nullptr) {
    return self.fail("no entry of list '" + std::string(list_path) + "' encloses the node");
  }
  const yfw_node_t *key = yfw::child(*entry, key_name);
  if (key == nullptr || key->value == nullptr) {
    return self.fail("the entry of list '" + std::string(list_path) + "' has no key '" + key_name + "'");
  }
  *value = key->value;
  return 0;
}

uint32_t item_of_native_entry(const context &self, const char *container, const char *leaf, const char **value) {
  if (self.native_entry == nullptr) {
    return 1;
  }
  for (const yfw_node_t &parent : yfw::children(*self.native_entry)) {
    const bool is_wanted = yfw::extra(parent).schema != nullptr && std::strcmp(parent.tag, container) == 0;
    if (const yfw_node_t *item = is_wanted ? yfw::child(parent, leaf) : nullptr; item != nullptr) {
      *value = item->value;
      return 0;
    }
  }
  return 1;
}

}  // namespace

uint32_t yfw_map_do_these_match(const char *first, const char *second) {
  if (first == nullptr || second == nullptr) {
    return 0;
  }
  // A plug-in compares one text with many of its own in a row, and two in three differ in their first letter: neither
  // takes a call here, so that these comparisons, which are most of all calls, need no stack.
  if (context *ctx = active_context(); ctx != nullptr && ctx->compared.front() != first) {
    remember(ctx->compared, first);
  }
  return *first == *second ? is_same_text(first, second) : 0;
}

void yfw_map_add_to_node_hierarchy(yfw_ctx_t *ctx, yfw_node_t *node, uint32_t level) {
  context &self = context_of(ctx);
  const char *name = __func__;
  const auto answer = [&] {
    self.hierarchy.push_back(node);
    return 0U;
  };
  observed(self, answer, [&] {
    return abi_call{abi_function::add_to_node_hierarchy, name, {{"node", node}, {"level", level}}};
  });
}

void yfw_map_remove_from_node_hierarchy(yfw_ctx_t *ctx, yfw_node_t *node) {
  context &self = context_of(ctx);
  const char *name = __func__;
  const auto answer = [&] {
    const auto last = std::find(self.hierarchy.rbegin(), self.hierarchy.rend(), node);
    if (last != self.hierarchy.rend()) {
      self.hierarchy.erase(std::next(last).base());
    }
    return 0U;
  };
  observed(self, answer, [&] { return abi_call{abi_function::remove_from_node_hierarchy, name, {{"node", node}}}; });
}

uint32_t yfw_map_is_request_add(const yfw_node_t *node) {
  return is_write_between(node, YFW_OPERATION_MERGE, YFW_OPERATION_CREATE);
}

uint32_t yfw_map_is_request_delete(const yfw_node_t *node) {
  return is_write_between(node, YFW_OPERATION_DELETE, YFW_OPERATION_REMOVE);
}

uint32_t yfw_map_get_node_info(yfw_ctx_t *ctx, const char *list_path, const char *key_name, const char **value) {
  context &self = context_of(ctx);
  const char *name = __func__;
  return observed(
      self, [&] { return key_of_open_entry(self, list_path, key_name, value); },
      [&] {
        return abi_call{abi_function::get_node_info, name, {{"list", list_path}, {"key-name", key_name}}, value};
      });
}

uint32_t yfw_map_get_node_info_mpls_static(yfw_ctx_t *ctx, const char *list_path, const char *container,
                                           const char *leaf, const char **value) {
  context &self = context_of(ctx);
  const char *name = __func__;
  return observed(
      self, [&] { return item_of_native_entry(self, container, leaf, value); },
      [&] {
        return abi_call{
            abi_function::find_list_item, name, {{"list", list_path}, {"container", container}, {"leaf", leaf}}, value};
      });
}

uint32_t yfw_map_util_itree_stack_peak_level(yfw_ctx_t *ctx, uint32_t level, yfw_itree_entry_t **entry) {
  context &self = context_of(ctx);
  const char *name = __func__;
  const auto answer = [&] {
    if (level >= self.tree_stack.size() || self.tree_stack[level].node == nullptr) {
      return yfw::status_framework_failure;
    }
    *entry = &self.tree_stack[level];
    return 0U;
  };
  return observed(self, answer, [&] {
    return abi_call{abi_function::peek_tree_stack, name, {{"level", level}}, nullptr, nullptr, entry};
  });
}
