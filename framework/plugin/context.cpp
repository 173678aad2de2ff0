#include "yfw/internal/context.hpp"

#include <cstdlib>
#include <utility>

#include "yfw/error.hpp"
#include "yfw/internal/path_steps.hpp"
#include "yfw/node.hpp"

namespace yfw {
namespace {

const yfw_node_t *node_with_text(const yfw_node_t &node, const char *text) {
  if (node.tag == text || node.value == text) {
    return &node;
  }
  for (const yfw_node_t &below : children(node)) {
    if (const yfw_node_t *found = node_with_text(below, text); found != nullptr) {
      return found;
    }
  }
  return nullptr;
}

}  // namespace

context::context(const manifest &plugin_description, yfw::trace_log &trace, output_sink &output,
                 uint32_t request_operation)
    : yfw_ctx_t{}, description(plugin_description), log(trace), sink(output) {
  request_.operation = request_operation;
  record.request = &request_;
  request = &record;
  _debug_ctx.framework_0[0] = log.wants_short_form() ? 1 : 0;
  // The handles distinguish the two levels; what they point to does not matter.
  trace_log = this;
  error_log = &problems;
  ring_trace = &log;
  ring_trace_enabled = log.wants_long_form() ? 1 : 0;
}

context::~context() {
  std::free(record.error_tag);
}

void context::reset() {
  std::free(std::exchange(record.error_tag, nullptr));
  record.walker_flags = 0;
  record.current_list = nullptr;
  record.output_list_count = 0;
  record.expansion_in_progress = 0;
  record.expansion_flags = 0;
  record.leaf_marking_suppressed = 0;
  output_root = {};
  compared = {};
  problems.clear();
  kept.clear();
  failure.clear();
}

uint32_t context::fail(std::string reason) {
  failure = std::move(reason);
  return status_framework_failure;
}

void context::report(std::string_view text) {
  problems.push_back({one_line(text), compared, hierarchy.empty() ? nullptr : hierarchy.back()});
}

void context::report_kept(std::string_view text) {
  kept.push_back({one_line(text), compared, hierarchy.empty() ? nullptr : hierarchy.back()});
}

const yfw_node_t *context::open_entry(std::string_view path) const {
  size_t depth = 0;
  while (!path.empty()) {
    const std::string_view name = next_step(path);
    if (depth == hierarchy.size() || hierarchy[depth]->tag == nullptr || name != hierarchy[depth]->tag) {
      return nullptr;
    }
    ++depth;
  }
  return depth == 0 ? nullptr : hierarchy[depth - 1];
}

const yfw_node_t *node_compared(const yfw_node_t &node, const compared_texts &compared) {
  for (const char *text : compared) {
    if (const yfw_node_t *found = text != nullptr ? node_with_text(node, text) : nullptr; found != nullptr) {
      return found;
    }
  }
  return nullptr;
}

constinit thread_local context *running_context = nullptr;

active_scope::active_scope(context &ctx) : outer_(std::exchange(running_context, &ctx)) {}

active_scope::~active_scope() {
  running_context = outer_;
}

}  // namespace yfw
