// The calls of the ABI that write the output tree.
#include <cerrno>
#include <cstring>

#include "context.hpp"

using yfw::context;
using yfw::context_of;

uint32_t yfw_map_datatree_add_path_flagged(yfw_ctx_t *ctx, yfw_node_t * /*out*/, const char *path, const char *ns,
                                           const char *value, yfw_node_t *source, yfw_node_t **created,
                                           uint32_t /*zero*/, uint32_t /*flag*/) {
  context &self = context_of(ctx);
  return self.sink.add_path(self, path, ns, value, source, created);
}

uint32_t yfw_map_search_or_add_list(yfw_ctx_t *ctx, yfw_node_t * /*out*/, yfw_node_t **current_list,
                                    const char *list_path, const char *key_value, const char *key_name,
                                    const char * /*ns*/) {
  context &self = context_of(ctx);
  if (key_value == nullptr) {
    return self.fail("list '" + std::string(list_path) + "' is entered without its key '" + key_name + "'");
  }
  return self.sink.enter_list(self, current_list, list_path, key_value, key_name);
}

uint32_t yfw_map_update_current_list_node(yfw_ctx_t *ctx, const char *schema_path) {
  context &self = context_of(ctx);
  if (self.open_entry(schema_path) == nullptr) {
    return self.fail("no entry of list '" + std::string(schema_path) + "' is open");
  }
  return 0;
}

void yfw_add_to_output_list_ctx(yfw_ctx_t *ctx, yfw_node_t * /*node*/, yfw_node_t * /*out*/) {
  ++context_of(ctx).record.output_list_count;
}

void yfw_remove_from_output_list_ctx(yfw_ctx_t *ctx, yfw_node_t * /*node*/, yfw_node_t * /*out*/) {
  --context_of(ctx).record.output_list_count;
}

char *yfw_strdup(const char *string, const char * /*owner*/) {
  return string == nullptr ? nullptr : strdup(string);
}

int strcmp_s(const char *first, size_t maximum, const char *second, int *indicator) {
  if (first == nullptr || second == nullptr || indicator == nullptr) {
    return EINVAL;
  }
  *indicator = std::strncmp(first, second, maximum + 1);
  return 0;
}
