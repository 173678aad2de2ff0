// Runs a plug-in over a client's request and checks the resulting operations.
#include <algorithm>
#include <map>
#include <set>

#include "call_recorder.hpp"
#include "yfw/internal/context.hpp"
#include "yfw/internal/dispatch.hpp"
#include "yfw/internal/error_collector.hpp"
#include "yfw/internal/plan_internal.hpp"
#include "yfw/internal/plugin_call.hpp"
#include "yfw/native_request.hpp"
#include "ymap_status.h"

namespace yfw {
namespace {

uint32_t request_operation(const client_request &client) {
  switch (client.operation) {
    case client_operation::get:
      return YFW_REQUEST_READ_ALL;
    case client_operation::get_config:
      return YFW_REQUEST_READ_CONFIG;
    case client_operation::edit:
      break;
  }
  return YFW_REQUEST_WRITE;
}

std::string in_hex(uint32_t status) {
  constexpr const char *digits = "0123456789abcdef";
  std::string text = "0x";
  for (int shift = 28; shift >= 0; shift -= 4) {
    text += digits[(status >> shift) & 0xfU];
  }
  return text;
}

class translation {
 public:
  translation(document &request, client_request client, const plugin &mapping, trace_log &log, bool is_checked,
              error_collector::mode error_mode = error_collector::mode::fail_fast)
      : document_(request),
        mapping_(mapping),
        recorder_(request.modules()),
        context_(mapping.description(), log, recorder_, request_operation(client)),
        errors_(request, error_mode),
        nodes_(request, result_.client, is_checked, errors_) {
    result_.client = std::move(client);
  }

  native_request run() {
    dispatch_plan plan = dispatches();
    result_.notes = std::move(plan.notes);
    for (const dispatch &part : plan.dispatches) {
      translate(part);
    }
    for (const yfw_node_t *leaf : nodes_.content_matches()) {
      add_note(*leaf, note_kind::content_match,
               "selects by value, which the native request cannot: more is read than requested");
    }
    return std::move(result_);
  }

  edit_plan plan() {
    lookup_observer lookups;
    context_.observer = &lookups;
    native_request planned = run();
    refuse_silent_ends(planned, errors_);
    return {std::move(planned), errors_.take(), lookups.take()};
  }

  probe_outcome probe() {
    probe_outcome outcome;
    for (const dispatch &part : dispatches().dispatches) {
      yfw_node_t *copy = copy_of(part, {});
      if (copy == nullptr || outcome.status != YMAP_OK) {
        continue;
      }
      outcome.status = walk(part, *copy);
      outcome.error_tag = context_.record.error_tag != nullptr ? context_.record.error_tag : "";
      for (const reported_problem &problem : context_.problems) {
        outcome.problems.push_back(problem.text);
      }
      for (const recorded_call &recorded : recorder_.recorded()) {
        outcome.value_lost = outcome.value_lost || (!result_.client.is_read() && recorded.value_lost);
      }
      append_operations(part, *copy, outcome.calls);
    }
    return outcome;
  }

 private:
  dispatch_plan dispatches() {
    return plan_dispatch(document_, result_.client, mapping_.description(), nodes_, errors_);
  }

  // Ends a walk of `copy`: appends its operations to `calls`.
  void append_operations(const dispatch &part, const yfw_node_t &copy, std::vector<native_operation> &calls) {
    for (recorded_call &recorded : recorder_.recorded()) {
      recorded.call.operation = recorded.node.operation;
      // Defaults are of the whole entry.
      recorded.call.source_node = part.defaults != nullptr ? part.node : node_at(copy, recorded.compared);
      calls.push_back(std::move(recorded.call));
    }
    recorder_.clear();
  }

  void translate(const dispatch &part) {
    std::set<const yfw_node_t *> omitted;
    for (;;) {
      yfw_node_t *copy = copy_of(part, omitted);
      if (copy == nullptr) {
        return;
      }
      const uint32_t status = walk(part, *copy);
      if (status == YMAP_OK && is_in_order(part, *copy)) {
        append_operations(part, *copy, result_.calls);
        return;
      }
      if (status == YMAP_OK) {
        continue;
      }
      const yfw_node_t *source_node = node_at(*copy, context_.compared);
      if (may_be_omitted(source_node, status) && omitted.insert(source_node).second) {
        add_note(*source_node, note_kind::unmapped, "is not mapped");
      } else {
        reject(part, source_node, client_error({}, reason(source_node, status), tag_of(status)));
      }
    }
  }

  // Reports the problem at the source node or, when that is not known, at the whole dispatched node. The next walk
  // omits it.
  void reject(const dispatch &part, const yfw_node_t *source_node, const client_error &problem) {
    const yfw_node_t *node = source_node != nullptr ? source_node : part.node;
    if (node == nullptr || errors_.contains(*node)) {
      throw problem.at({document_.file(), 0, path(part.schema)});
    }
    errors_.add(*node, problem);
    if (!children(*node).empty()) {
      add_note(*node, note_kind::not_translated, "is skipped with all nodes below it");
    }
  }

  yfw_node_t *copy_of(const dispatch &part, const std::set<const yfw_node_t *> &omitted) {
    return part.node != nullptr ? nodes_.copy(*part.node, part.inherited, omitted) : nodes_.placeholder(part.schema);
  }

  // One walk of a fresh copy. Operations of earlier walks are discarded.
  uint32_t walk(const dispatch &part, yfw_node_t &copy) {
    recorder_.clear();
    context_.reset();
    context_.hierarchy = part.ancestors;
    context_.tree_stack = {yfw_itree_entry_t{&copy}, yfw_itree_entry_t{part.key}};
    if (part.defaults != nullptr) {
      return call_plugin(context_, mapping_, call_form::create_defaults, part.defaults->function, &copy);
    }
    return call_plugin(context_, mapping_, call_form::entry, part.entry->function, &copy);
  }

  // A read omits leaves that are not mapped, when they are known.
  bool may_be_omitted(const yfw_node_t *source_node, uint32_t status) const {
    return status == YMAP_NOT_MAPPED && result_.client.is_read() && source_node != nullptr;
  }

  // A walk that succeeds may still differ from the request: an unmapped value results in an operation without value,
  // and a leaf may result in no operation. Returns false after such a problem is reported.
  bool is_in_order(const dispatch &part, const yfw_node_t &copy) {
    if (part.node == nullptr || part.defaults != nullptr) {
      return true;
    }
    for (const recorded_call &recorded : recorder_.recorded()) {
      if (!result_.client.is_read() && recorded.value_lost) {
        reject_lost_value(part, copy, recorded);
        return false;
      }
    }
    std::set<const yfw_node_t *> causes;
    for (const recorded_call &recorded : recorder_.recorded()) {
      causes.insert(node_at(copy, recorded.compared));
    }
    const size_t errors_before = errors_.count();
    check_operations(copy, causes);
    return errors_.count() == errors_before;
  }

  void check_operations(const yfw_node_t &copy, const std::set<const yfw_node_t *> &causes) {
    const yfw_node_t *given = plugin_input::source_node(copy);
    const bool has_no_operation = is_value_leaf(copy) && given != nullptr && !causes.contains(given);
    if (has_no_operation && !result_.client.is_read()) {
      errors_.add(*given, "is not mapped: no native edit results", error_tag::operation_not_supported);
    } else if (has_no_operation) {
      add_note(*given, note_kind::unmapped, "is not mapped: no native read results");
    }
    for (const yfw_node_t &below : children(copy)) {
      check_operations(below, causes);
    }
  }

  static bool is_value_leaf(const yfw_node_t &node) {
    return is_leaf(extra(node).schema) || is_leaf_list(extra(node).schema);
  }

  void reject_lost_value(const dispatch &part, const yfw_node_t &copy, const recorded_call &lost) {
    const yfw_node_t *source_node = node_at(copy, lost.compared);
    if (source_node == nullptr || source_node->value == nullptr) {
      const std::string text = "is not mapped: '" + lost.call.path() + "' would be read or deleted instead";
      reject(part, source_node, client_error({}, text, error_tag::invalid_value));
      return;
    }
    rejected_value unmapped{rejected_value::kind::unmapped, source_node->value};
    unmapped.accepted = mapped_values(part, *node_compared(copy, lost.compared));
    unmapped.reason = unmapped.accepted.empty() ? "" : ", expected " + quoted_list(unmapped.accepted);
    reject(part, source_node, client_error({}, std::move(unmapped)));
  }

  // The values of a leaf that are mapped, found by translating one value after the other.
  std::vector<std::string> mapped_values(const dispatch &part, const yfw_node_t &leaf) {
    std::vector<std::string> mapped;
    for (const std::string &candidate : document_.modules().allowed_values(extra(leaf).schema)) {
      yfw_node_t *trial = copy_of(part, {});
      yfw_node_t *tried = copy_with_source(*trial, plugin_input::source_node(leaf));
      if (tried == nullptr) {
        break;
      }
      tried->value = candidate.c_str();
      const bool is_walked = walk(part, *trial) == YMAP_OK;
      const auto &calls = recorder_.recorded();
      const bool is_lost = std::any_of(calls.begin(), calls.end(), [&](const recorded_call &recorded) {
        return recorded.value_lost && node_compared(*trial, recorded.compared) == tried;
      });
      if (is_walked && !is_lost) {
        mapped.push_back(candidate);
      }
    }
    return mapped;
  }

  // The copy of a client's node, at or below `copy`, or null.
  static yfw_node_t *copy_with_source(yfw_node_t &copy, const yfw_node_t *source) {
    if (plugin_input::source_node(copy) == source) {
      return &copy;
    }
    for (yfw_node_t &below : children(copy)) {
      if (yfw_node_t *found = copy_with_source(below, source); found != nullptr) {
        return found;
      }
    }
    return nullptr;
  }

  // The client's node that the plug-in was processing, or null.
  static const yfw_node_t *node_at(const yfw_node_t &copy, const compared_texts &compared) {
    const yfw_node_t *found = node_compared(copy, compared);
    return found != nullptr ? plugin_input::source_node(*found) : nullptr;
  }

  std::string reason(const yfw_node_t *source_node, uint32_t status) const {
    if (context_.record.error_tag != nullptr &&
        (source_node == nullptr || source_node->tag != std::string_view(context_.record.error_tag))) {
      return in_quotes(context_.record.error_tag) + " is not mapped";
    }
    if (context_.record.error_tag != nullptr) {
      return "is not mapped";
    }
    if (status == YMAP_NOT_MAPPED) {
      return "is not mapped";
    }
    if (status == status_framework_failure && !context_.failure.empty()) {
      return context_.failure;
    }
    const std::string detail = context_.problems.empty() ? "" : ": " + context_.problems.back().text;
    return "rejected by the plug-in with status " + in_hex(status) + detail;
  }

  // The error tag of a status. An unmapped tag has the same status as an unmapped value.
  error_tag tag_of(uint32_t status) const {
    if (context_.record.error_tag != nullptr || status == YMAP_NOT_MAPPED) {
      return error_tag::operation_not_supported;
    }
    return status == YMAP_ERR_INVALID_VALUE ? error_tag::invalid_value : error_tag::operation_failed;
  }

  void add_note(const yfw_node_t &node, note_kind kind, const std::string &text) {
    result_.notes.push_back({document_.where(node), kind, text});
  }

  document &document_;
  const plugin &mapping_;
  native_request result_;
  call_recorder recorder_;
  context context_;
  error_collector errors_;
  plugin_input nodes_;
};

}  // namespace

native_request translate_request(document &request, client_request client, const plugin &mapping, trace_log &log) {
  return translation(request, std::move(client), mapping, log, true).run();
}

edit_plan plan_request(document &request, client_request client, const plugin &mapping, trace_log &log) {
  if (client.is_read()) {
    throw error(place{request.file(), 0, {}}, "is not an edit; 'ymap request' translates reads");
  }
  edit_plan result =
      translation(request, std::move(client), mapping, log, true, error_collector::mode::collect_all).plan();
  add_condition_reads(result, request.modules(), mapping);
  return result;
}

probe_outcome probe_request(document &request, client_request client, const plugin &mapping, trace_log &log) {
  return translation(request, std::move(client), mapping, log, false).probe();
}

}  // namespace yfw
