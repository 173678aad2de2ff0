// Runs a plug-in over a client's request and judges what came of it.
#include <algorithm>
#include <map>
#include <set>

#include "call_recorder.hpp"
#include "yfw/internal/context.hpp"
#include "yfw/internal/handover.hpp"
#include "yfw/internal/plan_internal.hpp"
#include "yfw/internal/plugin_call.hpp"
#include "yfw/internal/refusals.hpp"
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
              refusals::habit habit = refusals::habit::throws)
      : document_(request),
        mapping_(mapping),
        recorder_(request.modules()),
        context_(mapping.description(), log, recorder_, request_operation(client)),
        refused_(request, habit),
        nodes_(request, result_.client, is_checked, refused_) {
    result_.client = std::move(client);
  }

  native_request run() {
    handover_plan plan = handovers();
    result_.notes = std::move(plan.notes);
    for (const handover &each : plan.handovers) {
      translate(each);
    }
    for (const yfw_node_t *leaf : nodes_.content_matches()) {
      note(*leaf, std::string(note_of_content_match));
    }
    return std::move(result_);
  }

  edit_plan plan() {
    lookup_observer lookups;
    context_.observer = &lookups;
    native_request planned = run();
    refuse_silent_ends(planned, refused_);
    return {std::move(planned), refused_.take(), lookups.take()};
  }

  probe_outcome probe() {
    probe_outcome outcome;
    for (const handover &each : handovers().handovers) {
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
  handover_plan handovers() {
    return plan_handovers(document_, result_.client, mapping_.description(), nodes_, refused_);
  }

  // Ends a walk of `copy`: its calls go to the end of `calls`.
  void take_calls(const handover &each, const yfw_node_t &copy, std::vector<native_call> &calls) {
    for (recorded_call &made : recorder_.recorded()) {
      made.call.operation = made.node.operation;
      // Defaults are made for the whole entry.
      made.call.cause = each.defaults != nullptr ? each.node : node_at(copy, made.compared);
      calls.push_back(std::move(made.call));
    }
    recorder_.clear();
  }

  void translate(const handover &each) {
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
      const yfw_node_t *culprit = node_at(*copy, context_.compared);
      if (can_do_without(culprit, status) && left_out.insert(culprit).second) {
        note(*culprit, "is not mapped: it has no native counterpart");
      } else {
        refuse(each, culprit, reason(culprit, status), tag_of(status));
      }
    }
  }

  // Refuses the culprit or, when none is known, all that was handed over; the next walk goes without it.
  void refuse(const handover &each, const yfw_node_t *culprit, const std::string &text, error_tag tag) {
    const yfw_node_t *node = culprit != nullptr ? culprit : each.node;
    if (node == nullptr || refused_.contains(*node)) {
      throw rpc_error(place{document_.file(), 0, path(each.schema)}, text, tag);
    }
    refused_.add(*node, text, tag);
    if (!children(*node).empty()) {
      note(*node, "is set aside with all that is below it");
    }
  }

  yfw_node_t *copy_of(const handover &each, const std::set<const yfw_node_t *> &left_out) {
    return each.node != nullptr ? nodes_.copy(*each.node, each.inherited, left_out) : nodes_.made(each.schema);
  }

  // One walk of a fresh copy. The calls of an earlier one are forgotten.
  uint32_t walk(const handover &each, yfw_node_t &copy) {
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
  bool can_do_without(const yfw_node_t *culprit, uint32_t status) const {
    return status == YMAP_NOT_MAPPED && result_.client.is_read() && culprit != nullptr;
  }

  // A walk that succeeded may still not do what the client said: a value without native counterpart becomes a call
  // without value, and a leaf may cause no call at all. False when something is refused.
  bool is_in_order(const handover &each, const yfw_node_t &copy) {
    if (each.node == nullptr || each.defaults != nullptr) {
      return true;
    }
    for (const recorded_call &made : recorder_.recorded()) {
      if (!result_.client.is_read() && made.value_lost) {
        const yfw_node_t *culprit = node_at(copy, made.compared);
        refuse(each, culprit, lost_value(each, copy, culprit, made), error_tag::invalid_value);
        return false;
      }
    }
    std::set<const yfw_node_t *> causes;
    for (const recorded_call &made : recorder_.recorded()) {
      causes.insert(node_at(copy, made.compared));
    }
    const size_t refused_before = refused_.count();
    require_cause(copy, causes);
    return refused_.count() == refused_before;
  }

  void require_cause(const yfw_node_t &copy, const std::set<const yfw_node_t *> &causes) {
    const yfw_node_t *given = walk_tree::origin(copy);
    const bool is_mute = is_value_leaf(copy) && given != nullptr && !causes.contains(given);
    if (is_mute && !result_.client.is_read()) {
      refused_.add(*given, "is not mapped: it would cause no native edit", error_tag::operation_not_supported);
    } else if (is_mute) {
      note(*given, "is not mapped: nothing is read for it");
    }
    for (const yfw_node_t &below : children(copy)) {
      require_cause(below, causes);
    }
  }

  static bool is_value_leaf(const yfw_node_t &node) {
    return is_leaf(extra(node).schema) || is_leaf_list(extra(node).schema);
  }

  std::string lost_value(const handover &each, const yfw_node_t &copy, const yfw_node_t *culprit,
                         const recorded_call &made) {
    if (culprit == nullptr || culprit->value == nullptr) {
      return "has no native counterpart: '" + made.call.path() + "' would be asked for or deleted instead";
    }
    std::string text = quoted(culprit->value) + " has no native counterpart";
    const std::vector<std::string> mapped = mapped_values(each, *node_compared(copy, made.compared));
    for (size_t i = 0; i < mapped.size(); ++i) {
      text += (i == 0 ? "; mapped are " : ", ") + yfw::quoted(mapped[i]);
    }
    return text;
  }

  // Which values of a leaf the mapping takes, found out by trying each one alone.
  std::vector<std::string> mapped_values(const handover &each, const yfw_node_t &leaf) {
    std::vector<std::string> mapped;
    for (const std::string &candidate : document_.modules().allowed_values(extra(leaf).schema)) {
      yfw_node_t *trial = copy_of(each, {});
      yfw_node_t *place = find_origin(*trial, walk_tree::origin(leaf));
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
    if (walk_tree::origin(copy) == origin) {
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
    return found != nullptr ? walk_tree::origin(*found) : nullptr;
  }

  std::string reason(const yfw_node_t *culprit, uint32_t status) const {
    if (context_.record.error_tag != nullptr &&
        (culprit == nullptr || culprit->tag != std::string_view(context_.record.error_tag))) {
      return quoted(context_.record.error_tag) + " is not mapped";
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

  void note(const yfw_node_t &node, const std::string &text) {
    result_.notes.push_back(error(document_.where(node), text).what());
  }

  document &document_;
  const plugin &mapping_;
  native_request result_;
  call_recorder recorder_;
  context context_;
  refusals refused_;
  walk_tree nodes_;
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
  edit_plan result = translation(request, std::move(client), mapping, log, true, refusals::habit::collects).plan();
  add_condition_reads(result, request.modules(), mapping);
  return result;
}

probe_outcome probe_request(document &request, client_request client, const plugin &mapping, trace_log &log) {
  return translation(request, std::move(client), mapping, log, false).probe();
}

}  // namespace yfw
