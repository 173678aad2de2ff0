#include "framework_calls.hpp"

#include <cstdlib>
#include <cstring>

namespace bench {

std::vector<call> *recording = nullptr;

namespace {

template <typename... text_t>
void note(call_kind kind, uint32_t number, void *first, void *second, text_t... texts) {
  if (recording != nullptr) {
    recording->push_back({kind, number, first, second, {texts...}});
  }
}

yfw_node_t output_entry;
yfw_itree_entry_t stack_entry{&output_entry};

}  // namespace
}  // namespace bench

using bench::call_kind;
using bench::note;

uint32_t yfw_map_do_these_match(const char *first, const char *second) {
  note(call_kind::match, 0, nullptr, nullptr, first, second);
  return first != nullptr && second != nullptr && std::strcmp(first, second) == 0 ? 1 : 0;
}

void yfw_map_add_to_node_hierarchy(yfw_ctx_t * /*ctx*/, yfw_node_t *node, uint32_t level) {
  note(call_kind::push, level, node, nullptr);
}

void yfw_map_remove_from_node_hierarchy(yfw_ctx_t * /*ctx*/, yfw_node_t *node) {
  note(call_kind::pop, 0, node, nullptr);
}

uint32_t yfw_map_datatree_add_path_flagged(yfw_ctx_t * /*ctx*/, yfw_node_t *out, const char *path, const char *ns,
                                           const char *value, yfw_node_t *source, yfw_node_t ** /*created*/,
                                           uint32_t /*zero*/, uint32_t flag) {
  note(call_kind::add_path, flag, out, source, path, ns, value);
  return 0;
}

uint32_t yfw_map_is_request_add(const yfw_node_t *node) {
  note(call_kind::is_add, 0, const_cast<yfw_node_t *>(node), nullptr);
  return node->operation <= YFW_OPERATION_CREATE ? 1 : 0;
}

uint32_t yfw_map_is_request_delete(const yfw_node_t *node) {
  note(call_kind::is_delete, 0, const_cast<yfw_node_t *>(node), nullptr);
  return node->operation == YFW_OPERATION_DELETE || node->operation == YFW_OPERATION_REMOVE ? 1 : 0;
}

uint32_t yfw_map_get_node_info(yfw_ctx_t * /*ctx*/, const char *list_path, const char *key_name, const char **value) {
  note(call_kind::node_info, 0, nullptr, nullptr, list_path, key_name);
  *value = "name";
  return 0;
}

uint32_t yfw_map_get_node_info_mpls_static(yfw_ctx_t * /*ctx*/, const char *list_path, const char *container,
                                           const char *leaf, const char ** /*value*/) {
  note(call_kind::item_info, 0, nullptr, nullptr, list_path, container, leaf);
  return 1;
}

uint32_t yfw_map_util_itree_stack_peak_level(yfw_ctx_t * /*ctx*/, uint32_t level, yfw_itree_entry_t **entry) {
  note(call_kind::peek, level, nullptr, nullptr);
  *entry = &bench::stack_entry;
  return 0;
}

uint32_t yfw_map_search_or_add_list(yfw_ctx_t * /*ctx*/, yfw_node_t *out, yfw_node_t **current_list,
                                    const char *list_path, const char *key_value, const char *key_name,
                                    const char *ns) {
  note(call_kind::enter_list, 0, out, nullptr, list_path, key_value, key_name, ns);
  *current_list = &bench::output_entry;
  return 0;
}

uint32_t yfw_map_update_current_list_node(yfw_ctx_t * /*ctx*/, const char *schema_path) {
  note(call_kind::update_list, 0, nullptr, nullptr, schema_path);
  return 0;
}

void yfw_add_to_output_list_ctx(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  note(call_kind::register_entry, 0, node, out);
  ++ctx->request->output_list_count;
}

void yfw_remove_from_output_list_ctx(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  note(call_kind::unregister_entry, 0, node, out);
  --ctx->request->output_list_count;
}

char *yfw_strdup(const char *string, const char * /*owner*/) {
  return string == nullptr ? nullptr : strdup(string);
}

int strcmp_s(const char *first, size_t maximum, const char *second, int *indicator) {
  note(call_kind::compare, static_cast<uint32_t>(maximum), nullptr, nullptr, first, second);
  *indicator = std::strncmp(first, second, maximum + 1);
  return 0;
}

int32_t yfw_debug_should_log(yfw_debug_ctx_t * /*debug_ctx*/, int32_t level) {
  note(call_kind::should_log, static_cast<uint32_t>(level), nullptr, nullptr);
  return 0;
}

void _kel_dt_log_filter_adv(void * /*handle*/, int32_t /*zero1*/, int32_t /*zero2*/, int32_t /*zero3*/,
                            int32_t /*zero4*/, int32_t /*zero5*/, int32_t * /*slot*/, const char * /*format*/, ...) {}

uint32_t ret_nc_yfw_trace_index_incr(void) {
  return 0;
}

void _lstrace(void * /*handle*/, uint64_t /*flags*/, const char * /*text*/) {}

uint32_t ymap_ox_ocif_openconfigifaggregate_augment_lvla_config(yfw_ctx_t * /*ctx*/, yfw_node_t * /*node*/,
                                                                yfw_node_t * /*out*/) {
  return 0;
}
