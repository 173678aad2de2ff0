// The calls of the ABI that write the output tree.
#include <cerrno>
#include <cstring>

#include "yfw/internal/context.hpp"

using yfw::abi_call;
using yfw::abi_function;
using yfw::context;
using yfw::context_of;
using yfw::observed;

uint32_t yfw_map_datatree_add_path_flagged(yfw_ctx_t *ctx, yfw_node_t *out, const char *path, const char *ns,
                                           const char *value, yfw_node_t *source, yfw_node_t **created, uint32_t zero,
                                           uint32_t flag) {
  context &self = context_of(ctx);
  const char *name = __func__;
  return observed(
      self, [&] { return self.sink.add_path(self, path, ns, value, source, created, flag); },
      [&] {
        const uint32_t is_wanted = created != nullptr ? 1 : 0;
        return abi_call{abi_function::add_path,
                        name,
                        {{"out", out},
                         {"path", path},
                         {"ns", ns},
                         {"value", value},
                         {"source", source},
                         {"created", is_wanted},
                         {"zero", zero},
                         {"flag", flag}},
                        nullptr,
                        created};
      });
}

uint32_t yfw_map_search_or_add_list(yfw_ctx_t *ctx, yfw_node_t *out, yfw_node_t **current_list, const char *list_path,
                                    const char *key_value, const char *key_name, const char *ns) {
  context &self = context_of(ctx);
  const char *name = __func__;
  const auto answer = [&] {
    if (key_value == nullptr) {
      return self.fail("list '" + std::string(list_path) + "' is entered without its key '" + key_name + "'");
    }
    return self.sink.enter_list(self, current_list, list_path, key_value, key_name);
  };
  return observed(self, answer, [&] {
    return abi_call{abi_function::enter_list,
                    name,
                    {{"out", out}, {"list", list_path}, {"key-value", key_value}, {"key-name", key_name}, {"ns", ns}},
                    nullptr,
                    current_list};
  });
}

uint32_t yfw_map_update_current_list_node(yfw_ctx_t *ctx, const char *schema_path) {
  context &self = context_of(ctx);
  const char *name = __func__;
  const auto answer = [&] {
    const bool is_open = self.open_entry(schema_path) != nullptr;
    return is_open ? 0 : self.fail("no entry of list '" + std::string(schema_path) + "' is open");
  };
  return observed(self, answer, [&] {
    return abi_call{abi_function::update_current_list, name, {{"list", schema_path}}};
  });
}

void yfw_add_to_output_list_ctx(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  context &self = context_of(ctx);
  const char *name = __func__;
  const auto answer = [&] {
    ++self.record.output_list_count;
    return 0U;
  };
  observed(self, answer, [&] {
    return abi_call{abi_function::add_to_output_list, name, {{"node", node}, {"out", out}}};
  });
}

void yfw_remove_from_output_list_ctx(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  context &self = context_of(ctx);
  const char *name = __func__;
  const auto answer = [&] {
    --self.record.output_list_count;
    return 0U;
  };
  observed(self, answer, [&] {
    return abi_call{abi_function::remove_from_output_list, name, {{"node", node}, {"out", out}}};
  });
}

char *yfw_strdup(const char *string, const char * /*owner*/) {
  return string == nullptr ? nullptr : strdup(string);
}

int strcmp_s(const char *first, size_t maximum, const char *second, int *indicator) {
  if (first == nullptr || second == nullptr || indicator == nullptr) {
    return EINVAL;
  }
  *indicator = maximum == SIZE_MAX ? std::strcmp(first, second) : std::strncmp(first, second, maximum + 1);
  return 0;
}
