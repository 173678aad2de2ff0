#include "recording_framework.hpp"

#include "tree_builder.hpp"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

using support::failing;
using support::recording_framework;

namespace {

recording_framework *the_framework = nullptr;

std::string quoted(const char *text) {
  return text != nullptr ? "\"" + std::string(text) + "\"" : "(null)";
}

std::string tag_of(const yfw_node_t *node) {
  return node == nullptr ? "(no node)" : node->tag == nullptr ? "(null)" : node->tag;
}

bool is_write() {
  const uint32_t operation = the_framework->ctx().request->request->operation;
  return operation != YFW_REQUEST_READ_CONFIG && operation != YFW_REQUEST_READ_ALL;
}

}  // namespace

namespace support {

recording_framework::recording_framework(yfw_ctx_t *ctx, yfw_node_t *out) : ctx_(ctx), out_(out) {
  the_framework = this;
}

recording_framework::~recording_framework() {
  the_framework = nullptr;
}

void recording_framework::note(const std::string &line, const yfw_ctx_t *by, const yfw_node_t *to) {
  calls += line;
  calls += by == nullptr || by == ctx_ ? "" : " with another context";
  calls += to == nullptr || to == out_ ? "" : " to another output";
  calls += "\n";
}

const yfw_node_t *recording_framework::key_leaf(const std::string &name) const {
  if (hierarchy.empty()) {
    return nullptr;
  }
  const yfw_node_t *entry = hierarchy.back();
  for (uint32_t i = 0; (entry->flags & YFW_NODE_HAS_CHILDREN) != 0 && i < entry->child_count; ++i) {
    if (entry->children[i].tag != nullptr && name == entry->children[i].tag) {
      return &entry->children[i];
    }
  }
  return nullptr;
}

bool recording_framework::fails(failing kind) {
  fallible.push_back({kind, static_cast<size_t>(std::count(calls.begin(), calls.end(), '\n')),
                      ctx_->request->expansion_in_progress == 1});
  return fallible.size() == failing_call;
}

}  // namespace support

uint32_t yfw_map_do_these_match(const char *first, const char *second) {
  if (the_framework->notes_comparisons) {
    the_framework->note("match " + quoted(first) + " " + quoted(second), nullptr);
  }
  const bool is_match = first != nullptr && second != nullptr && std::strcmp(first, second) == 0;
  if (is_match) {
    the_framework->matched.insert(first);
  }
  return is_match ? 1 : 0;
}

void yfw_map_add_to_node_hierarchy(yfw_ctx_t *ctx, yfw_node_t *node, uint32_t level) {
  the_framework->note("push " + tag_of(node) + " " + std::to_string(level), ctx);
  the_framework->hierarchy.push_back(node);
}

void yfw_map_remove_from_node_hierarchy(yfw_ctx_t *ctx, yfw_node_t *node) {
  const bool is_last = !the_framework->hierarchy.empty() && the_framework->hierarchy.back() == node;
  the_framework->note("pop " + tag_of(node) + (is_last ? "" : " out of turn"), ctx);
  if (is_last) {
    the_framework->hierarchy.pop_back();
  }
}

uint32_t yfw_map_datatree_add_path_flagged(yfw_ctx_t *ctx, yfw_node_t *out, const char *path, const char *ns,
                                           const char *value, yfw_node_t *source, yfw_node_t **created, uint32_t zero,
                                           uint32_t flag) {
  std::string line = "add " + support::short_name(ns) + ":" + path;
  line += value != nullptr ? " " + quoted(value) : "";
  line += source != nullptr ? " from " + tag_of(source) + "/" + std::to_string(source->operation) : "";
  line += created != nullptr ? " and tell" : "";
  line += zero != 0 ? " zero " + std::to_string(zero) : "";
  line += " flag " + std::to_string(flag);
  char walker_flags[32] = "";
  if (ctx->request->walker_flags != 0) {
    (void)std::snprintf(walker_flags, sizeof walker_flags, " walker %x", ctx->request->walker_flags);
  }
  the_framework->note(line + walker_flags, ctx, out);
  if (the_framework->fails(failing::add)) {
    return the_framework->failing_status;
  }
  if (created != nullptr && the_framework->creates_node) {
    *created = &the_framework->created;
  }
  const auto status = the_framework->add_status.find(++the_framework->adds);
  return status != the_framework->add_status.end() ? status->second : 0;
}

uint32_t yfw_map_is_request_add(const yfw_node_t *node) {
  return is_write() && node->operation <= YFW_OPERATION_CREATE ? 1 : 0;
}

uint32_t yfw_map_is_request_delete(const yfw_node_t *node) {
  return is_write() && (node->operation == YFW_OPERATION_DELETE || node->operation == YFW_OPERATION_REMOVE) ? 1 : 0;
}

uint32_t yfw_map_get_node_info(yfw_ctx_t *ctx, const char *list_path, const char *key_name, const char **value) {
  the_framework->note("key " + std::string(list_path) + " " + key_name, ctx);
  if (the_framework->fails(failing::key)) {
    return the_framework->failing_status;
  }
  if (the_framework->key_status != 0) {
    return the_framework->key_status;
  }
  const yfw_node_t *key = the_framework->key_leaf(key_name);
  *value = std::strcmp(key_name, "name") == 0 ? the_framework->interface_name : key != nullptr ? key->value : nullptr;
  return 0;
}

uint32_t yfw_map_get_node_info_mpls_static(yfw_ctx_t *ctx, const char *list_path, const char *container,
                                           const char *leaf, const char **value) {
  the_framework->note("item " + std::string(list_path) + " " + container + " " + leaf, ctx);
  if (the_framework->fails(failing::item)) {
    return the_framework->failing_status;
  }
  *value = the_framework->item_status == 0 ? "override" : nullptr;
  return the_framework->item_status;
}

uint32_t yfw_map_util_itree_stack_peak_level(yfw_ctx_t *ctx, uint32_t level, yfw_itree_entry_t **entry) {
  the_framework->note("stack " + std::to_string(level), ctx);
  if (the_framework->fails(failing::stack)) {
    return the_framework->failing_status;
  }
  *entry = the_framework->stack_entry;
  return the_framework->stack_status;
}

uint32_t yfw_map_search_or_add_list(yfw_ctx_t *ctx, yfw_node_t *out, yfw_node_t **current_list, const char *list_path,
                                    const char *key_value, const char *key_name, const char *ns) {
  const bool is_current = current_list == &ctx->request->current_list;
  the_framework->note("list " + support::short_name(ns) + ":" + list_path + " " + key_name + "=" + quoted(key_value) +
                          (is_current ? "" : " into another field"),
                      ctx, out);
  if (the_framework->fails(failing::list)) {
    return the_framework->failing_status;
  }
  const auto status = the_framework->list_status.find(key_value != nullptr ? key_value : "");
  return status != the_framework->list_status.end() ? status->second : 0;
}

uint32_t yfw_map_update_current_list_node(yfw_ctx_t *ctx, const char *schema_path) {
  the_framework->note("current " + std::string(schema_path), ctx);
  if (the_framework->fails(failing::current)) {
    return the_framework->failing_status;
  }
  const auto status = the_framework->current_status.find(schema_path);
  return status != the_framework->current_status.end() ? status->second : 0;
}

void yfw_add_to_output_list_ctx(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  the_framework->note("register " + tag_of(node), ctx, out);
  ++ctx->request->output_list_count;
}

void yfw_remove_from_output_list_ctx(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  the_framework->note("unregister " + tag_of(node), ctx, out);
  --ctx->request->output_list_count;
}

char *yfw_strdup(const char *string, const char *owner) {
  the_framework->note("strdup " + quoted(string) + " for " + owner, nullptr);
  if (string == nullptr || the_framework->fails(failing::copy)) {
    return nullptr;
  }
  return the_framework->copies.emplace_back(string).data();
}

int strcmp_s(const char *first, size_t maximum, const char *second, int *indicator) {
  if (the_framework->notes_comparisons) {
    the_framework->note("compare " + quoted(first) + " " + std::to_string(maximum) + " " + quoted(second), nullptr);
  }
  // As the safe string library does: a failed comparison, too, writes the indicator.
  *indicator = 0;
  const bool is_failing = the_framework->fails(failing::comparison);
  if (++the_framework->comparisons == the_framework->failing_comparison || is_failing) {
    return 1;
  }
  *indicator = std::strncmp(first, second, maximum + 1);
  return 0;
}

int32_t yfw_debug_should_log(yfw_debug_ctx_t *debug_ctx, int32_t level) {
  if (debug_ctx != &the_framework->ctx()._debug_ctx || (level != 0 && level != 3)) {
    the_framework->note("asked for level " + std::to_string(level) + " of some context", nullptr);
  }
  return level == 0 ? the_framework->logs_errors : the_framework->logs_traces;
}

void _kel_dt_log_filter_adv(void *handle, int32_t zero1, int32_t zero2, int32_t zero3, int32_t zero4, int32_t zero5,
                            int32_t *slot, const char *format, ...) {
  char text[4096];
  va_list arguments;
  va_start(arguments, format);
  (void)std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  the_framework->log.push_back({slot, *slot, text});

  const yfw_ctx_t &ctx = the_framework->ctx();
  const bool is_trace = handle == ctx.trace_log;
  char head[64];
  (void)std::snprintf(head, sizeof head, "%s: YFW: ctx=%p,", is_trace ? "TRC" : "ERR", static_cast<const void *>(&ctx));
  const bool is_good = (is_trace || handle == ctx.error_log) && std::strncmp(text, head, std::strlen(head)) == 0 &&
                       zero1 == 0 && zero2 == 0 && zero3 == 0 && zero4 == 0 && zero5 == 0;
  the_framework->note(
      is_good ? std::string(text, 3) + " " + (text + std::strlen(head)) : "malformed point: " + std::string(text),
      nullptr);
}

uint32_t ret_nc_yfw_trace_index_incr(void) {
  return ++the_framework->sequence_number;
}

void _lstrace(void *handle, uint64_t flags, const char *text) {
  const bool is_good = handle == the_framework->ctx().ring_trace && flags == 0x10101000000;
  the_framework->ring.push_back((is_good ? "" : "malformed: ") + std::string(text));
}

uint32_t ymap_ox_ocif_openconfigifaggregate_augment_lvla_config(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  the_framework->note("aggregate " + tag_of(node), ctx, out);
  if (the_framework->fails(failing::aggregate)) {
    return the_framework->failing_status;
  }
  const size_t call = the_framework->aggregate_calls++;
  return call < the_framework->aggregate_status.size() ? the_framework->aggregate_status[call] : 0;
}
