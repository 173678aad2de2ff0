// The floor of a walk: its framework calls with their arguments, one after the other, from a shared library.
#include "framework_calls.hpp"

using bench::call;
using bench::call_kind;

extern "C" __attribute__((visibility("default"))) uint32_t bench_replay(yfw_ctx_t *ctx, const call *calls,
                                                                        uint64_t count) {
  uint32_t sum = 0;
  for (const call *each = calls; each != calls + count; ++each) {
    auto *first = static_cast<yfw_node_t *>(each->first);
    auto *second = static_cast<yfw_node_t *>(each->second);
    const char *const *texts = each->texts;
    const char *value = nullptr;
    int indicator = 0;
    yfw_itree_entry_t *entry = nullptr;
    switch (each->kind) {
      case call_kind::none:
        sum += each->number;
        break;
      case call_kind::match:
        sum += yfw_map_do_these_match(texts[0], texts[1]);
        break;
      case call_kind::push:
        yfw_map_add_to_node_hierarchy(ctx, first, each->number);
        break;
      case call_kind::pop:
        yfw_map_remove_from_node_hierarchy(ctx, first);
        break;
      case call_kind::add_path:
        sum += yfw_map_datatree_add_path_flagged(ctx, first, texts[0], texts[1], texts[2], second, nullptr, 0,
                                                 each->number);
        break;
      case call_kind::is_add:
        sum += yfw_map_is_request_add(first);
        break;
      case call_kind::is_delete:
        sum += yfw_map_is_request_delete(first);
        break;
      case call_kind::node_info:
        sum += yfw_map_get_node_info(ctx, texts[0], texts[1], &value);
        break;
      case call_kind::item_info:
        sum += yfw_map_get_node_info_mpls_static(ctx, texts[0], texts[1], texts[2], &value);
        break;
      case call_kind::peek:
        sum += yfw_map_util_itree_stack_peak_level(ctx, each->number, &entry);
        break;
      case call_kind::enter_list:
        sum +=
            yfw_map_search_or_add_list(ctx, first, &ctx->request->current_list, texts[0], texts[1], texts[2], texts[3]);
        break;
      case call_kind::update_list:
        sum += yfw_map_update_current_list_node(ctx, texts[0]);
        break;
      case call_kind::register_entry:
        yfw_add_to_output_list_ctx(ctx, first, second);
        break;
      case call_kind::unregister_entry:
        yfw_remove_from_output_list_ctx(ctx, first, second);
        break;
      case call_kind::compare:
        sum += static_cast<uint32_t>(strcmp_s(texts[0], each->number, texts[1], &indicator));
        break;
      case call_kind::should_log:
        sum += static_cast<uint32_t>(yfw_debug_should_log(&ctx->_debug_ctx, static_cast<int32_t>(each->number)));
        break;
    }
  }
  return sum;
}
