#include "call_recorder.hpp"

#include <utility>

#include "yfw/node.hpp"

namespace yfw {
namespace {

// The operation that the mapping wrote on the output node, which holds for the next path only. Where the client's node
// is removed ("remove" never fails, RFC 6241, section 7.2), its native operation must not fail either, so that
// "create" becomes "merge".
uint32_t output_operation(context &ctx, uint32_t operation) {
  yfw_node_t &out = ctx.output_root;
  if ((out.flags & YFW_NODE_OPERATION_CHANGED) == 0) {
    return operation;
  }
  out.flags &= static_cast<uint8_t>(~YFW_NODE_OPERATION_CHANGED);
  const uint32_t written = std::exchange(out.operation, YFW_OPERATION_MERGE);
  return operation == YFW_OPERATION_REMOVE && written == YFW_OPERATION_CREATE ? YFW_OPERATION_MERGE : written;
}

}  // namespace

uint32_t call_recorder::add_path(context &ctx, std::string_view path, const char *ns, const char *value,
                                 yfw_node_t *source, yfw_node_t **created, uint32_t flag) {
  const schema_steps &steps = paths_.steps(path, ns);
  if (steps.empty()) {
    return ctx.fail("the modules have no native path '" + std::string(path) + "' in namespace '" + ns + "'");
  }
  const uint32_t request = ctx.record.request->operation;
  const bool is_read = request == YFW_REQUEST_READ_CONFIG || request == YFW_REQUEST_READ_ALL;
  const uint32_t operation = output_operation(ctx, source != nullptr ? source->operation : YFW_OPERATION_MERGE);

  recorded_call &recorded = recorded_.emplace_back();
  recorded.call.steps = steps_with_keys(ctx, steps);
  recorded.call.flag = flag;
  recorded.compared = ctx.compared;
  recorded.node.tag = name(steps.back()).data();
  recorded.node.ns = yfw::ns(steps.back()).data();
  recorded.node.operation = operation;
  if (value != nullptr) {
    recorded.call.value = value;
  }
  if (is_read) {
    recorded.call.kind = operation_kind::read;
  } else if (value != nullptr) {
    recorded.call.kind = operation_kind::set;
    recorded.node.operation = deletes(operation) ? YFW_OPERATION_MERGE : operation;
  } else {
    recorded.call.kind = operation_kind::remove;
    recorded.value_lost = source == nullptr || !deletes(source->operation);
  }
  if (created != nullptr) {
    *created = &recorded.node;
  }
  return 0;
}

uint32_t call_recorder::enter_list(context &ctx, yfw_node_t ** /*current_list*/, std::string_view path,
                                   const char * /*key_value*/, const char * /*key_name*/) {
  return ctx.fail("list '" + std::string(path) + "' is entered while a request is translated");
}

std::vector<path_step> call_recorder::steps_with_keys(const context &ctx, const schema_steps &steps) const {
  std::vector<path_step> result;
  for (const lysc_node *step : steps) {
    path_step &added = result.emplace_back(path_step{step, {}});
    const list_pair *pair = is_list(step) ? ctx.description.pair_of_low(path(step)) : nullptr;
    const yfw_node_t *entry = pair != nullptr ? ctx.open_entry(pair->high) : nullptr;
    const yfw_node_t *key = entry != nullptr ? child(*entry, pair->high_key) : nullptr;
    if (key != nullptr && key->value != nullptr) {
      added.keys.emplace_back(pair->low_key, key->value);
    }
  }
  return result;
}

}  // namespace yfw
