// Runs a plug-in over a client's request and judges what came of it.
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
              error_collector::mode habit = error_collector::mode::fail_fast)
      : document_(request),
        mapping_(mapping),
        recorder_(request.modules()),
        context_(mapping.description(), log, recorder_, request_operation(client)),
        errors_(request, habit),
        nodes_(request, result_.client, is_checked, errors_) {
    result_.client = std::move(client);
  }

  native_request run() {
    dispatch_plan plan = dispatches();
    result_.notes = std::move(plan.notes);
    for (const dispatch &each : plan.dispatches) {
      translate(each);
    }
    for (const yfw_node_t *leaf : nodes_.content_matches()) {
      add_note(*leaf, note_kind::content_match,
               "selects by value, which the native request does not: more is read than asked for");
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
    for (const dispatch &each : dispatches().dispatches) {
      yfw_node_t *copy = copy_of(each, {});
      if (copy == nullptr || outcome.status != YMAP_OK) {
        continue;
      }
      outcome.status = walk(each, *copy);
      outcome.error_tag = context_.record.error_tag != nullptr ? context_.record.error_tag : "";
      for (const reported_problem &problem : context_.problems) {
        outcome.problems.push_back(problem.text);
      }
      for (const recorded_call &made : recorder_.recorded()) {
        outcome.value_lost = outcome.value_lost || (!result_.client.is_read() && made.value_lost);
      }
      take_calls(each, *copy, outcome.calls);
    }
    return outcome;
  }

 private:
  dispatch_plan dispatches() {
    return plan_dispatch(document_, result_.client, mapping_.description(), nodes_, errors_);
  }

  // Ends a walk of `copy`: its calls go to the end of `calls`.
  void take_calls(const dispatch &each, const yfw_node_t &copy, std::vector<native_operation> &calls) {
    for (recorded_call &made : recorder_.recorded()) {
      made.call.operation = made.node.operation;
      // Defaults are made for the whole entry.
      made.call.source_node = each.defaults != nullptr ? each.node : node_at(copy, made.compared);
      calls.push_back(std::move(made.call));
    }
    recorder_.clear();
  }

  void translate(const dispatch &each) {
    std::set<const yfw_node_t *> left_out;
    for (;;) {
      yfw_node_t *copy = copy_of(each, left_out);
      if (copy == nullptr) {
        return;
      }
      const uint32_t status = walk(each, *copy);
      if (status == YMAP_OK && is_in_order(each, *copy)) {
        take_calls(each, *copy, result_.calls);
        return;
      }
      if (status == YMAP_OK) {
        continue;
      }
      const yfw_node_t *source_node = node_at(*copy, context_.compared);
      if (can_do_without(source_node, status) && left_out.insert(source_node).second) {
        add_note(*source_node, note_kind::unmapped, "is not mapped: it has no native counterpart");
      } else {
        refuse(each, source_node, reason(source_node, status), tag_of(status));
      }
    }
  }

  // Rejects the source node or, when none is known, all that was handed over; the next walk goes without it.
  template <typename... detail_t>
  void refuse(const dispatch &each, const yfw_node_t *source_node, const std::string &text, error_tag tag,
              const detail_t &...rejected) {
    const yfw_node_t *node = source_node != nullptr ? source_node : each.node;
    if (node == nullptr || errors_.contains(*node)) {
      throw client_error(place{document_.file(), 0, path(each.schema)}, text, tag, rejected...);
    }
    errors_.add(*node, text, tag, rejected...);
    if (!children(*node).empty()) {
      add_note(*node, note_kind::not_translated, "is set aside with all that is below it");
    }
  }

  yfw_node_t *copy_of(const dispatch &each, const std::set<const yfw_node_t *> &left_out) {
    return each.node != nullptr ? nodes_.copy(*each.node, each.inherited, left_out) : nodes_.placeholder(each.schema);
  }

  // One walk of a fresh copy. The calls of an earlier one are forgotten.
  uint32_t walk(const dispatch &each, yfw_node_t &copy) {
    recorder_.clear();
    context_.reset();
    context_.hierarchy = each.ancestors;
    context_.tree_stack = {yfw_itree_entry_t{&copy}, yfw_itree_entry_t{each.key}};
    if (each.defaults != nullptr) {
      return call_plugin(context_, mapping_, call_form::create_defaults, each.defaults->function, &copy);
    }
    return call_plugin(context_, mapping_, call_form::entry, each.entry->function, &copy);
  }

  // A read does without leaves that are not mapped. An unnamed node, part of a whole container, stops no walk.
  bool can_do_without(const yfw_node_t *source_node, uint32_t status) const {
    return status == YMAP_NOT_MAPPED && result_.client.is_read() && source_node != nullptr;
  }

  // A walk that succeeded may still not do what the client said: a value without native counterpart becomes a call
  // without value, and a leaf may cause no call at all. False when something is errors.
  bool is_in_order(const dispatch &each, const yfw_node_t &copy) {
    if (each.node == nullptr || each.defaults != nullptr) {
      return true;
    }
    for (const recorded_call &made : recorder_.recorded()) {
      if (!result_.client.is_read() && made.value_lost) {
        refuse_lost_value(each, copy, made);
        return false;
      }
    }
    std::set<const yfw_node_t *> causes;
    for (const recorded_call &made : recorder_.recorded()) {
      causes.insert(node_at(copy, made.compared));
    }
    const size_t errors_before = errors_.count();
    require_cause(copy, causes);
    return errors_.count() == errors_before;
  }

  void require_cause(const yfw_node_t &copy, const std::set<const yfw_node_t *> &causes) {
    const yfw_node_t *given = plugin_input::source_node(copy);
    const bool is_mute = is_value_leaf(copy) && given != nullptr && !causes.contains(given);
    if (is_mute && !result_.client.is_read()) {
      errors_.add(*given, "is not mapped: it would cause no native edit", error_tag::operation_not_supported);
    } else if (is_mute) {
      add_note(*given, note_kind::unmapped, "is not mapped: nothing is read for it");
    }
    for (const yfw_node_t &below : children(copy)) {
      require_cause(below, causes);
    }
  }

  static bool is_value_leaf(const yfw_node_t &node) {
    return is_leaf(extra(node).schema) || is_leaf_list(extra(node).schema);
  }

  void refuse_lost_value(const dispatch &each, const yfw_node_t &copy, const recorded_call &made) {
    const yfw_node_t *source_node = node_at(copy, made.compared);
    rejected_value lost{{}, "has no native counterpart", {}};
    if (source_node == nullptr || source_node->value == nullptr) {
      refuse(each, source_node, lost.reason + ": '" + made.call.path() + "' would be asked for or deleted instead",
             error_tag::invalid_value);
      return;
    }
    lost.value = source_node->value;
    lost.accepted = mapped_values(each, *node_compared(copy, made.compared));
    std::string text = in_quotes(lost.value) + " " + lost.reason;
    for (size_t i = 0; i < lost.accepted.size(); ++i) {
      text += (i == 0 ? "; mapped are " : ", ") + in_quotes(lost.accepted[i]);
    }
    refuse(each, source_node, text, error_tag::invalid_value, lost);
  }

  // Which values of a leaf the mapping takes, found out by trying each one alone.
  std::vector<std::string> mapped_values(const dispatch &each, const yfw_node_t &leaf) {
    std::vector<std::string> mapped;
    for (const std::string &candidate : document_.modules().allowed_values(extra(leaf).schema)) {
      yfw_node_t *trial = copy_of(each, {});
      yfw_node_t *place = find_origin(*trial, plugin_input::source_node(leaf));
      if (place == nullptr) {
        break;
      }
      place->value = candidate.c_str();
      const bool walked = walk(each, *trial) == YMAP_OK;
      const auto &calls = recorder_.recorded();
      const bool lost = std::any_of(calls.begin(), calls.end(), [&](const recorded_call &made) {
        return made.value_lost && node_compared(*trial, made.compared) == place;
      });
      if (walked && !lost) {
        mapped.push_back(candidate);
      }
    }
    return mapped;
  }

  static yfw_node_t *find_origin(yfw_node_t &copy, const yfw_node_t *origin) {
    if (plugin_input::source_node(copy) == origin) {
      return &copy;
    }
    for (yfw_node_t &below : children(copy)) {
      if (yfw_node_t *found = find_origin(below, origin); found != nullptr) {
        return found;
      }
    }
    return nullptr;
  }

  // The client's node that the plug-in was at, or null.
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
      return "is not mapped: it has no native counterpart";
    }
    if (status == status_framework_failure && !context_.failure.empty()) {
      return context_.failure;
    }
    const std::string said = context_.problems.empty() ? "" : ": " + context_.problems.back().text;
    return "the plug-in refuses it with status " + in_hex(status) + said;
  }

  // What the reason is in NETCONF's words. A tag that is not mapped has the status of a value that is not.
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
    throw error(place{request.file(), 0, {}},
                "is no edit, which alone can be planned; 'ymap request' translates reads");
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
