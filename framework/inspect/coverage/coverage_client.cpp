#include <algorithm>
#include <cstdio>

#include "yfw/internal/coverage_document.hpp"
#include "yfw/internal/coverage_probes.hpp"
#include "yfw/internal/coverage_values.hpp"
#include "yfw/node.hpp"
#include "ymap_status.h"

namespace yfw {
namespace {

client_operation to_client_operation(leaf_operation operation) {
  switch (operation) {
    case leaf_operation::get_config:
      return client_operation::get_config;
    case leaf_operation::get:
      return client_operation::get;
    default:
      return client_operation::edit;
  }
}

bool is_allowed(const lysc_node *leaf, leaf_operation operation) {
  return operation == leaf_operation::get ||
         (is_config(leaf) && (operation != leaf_operation::remove || !is_key(leaf)));
}

effect_kind kind_of(const native_operation &call) {
  switch (call.kind) {
    case operation_kind::set:
      return effect_kind::set;
    case operation_kind::remove:
      return effect_kind::remove;
    case operation_kind::read:
      break;
  }
  return effect_kind::read;
}

std::string status_text(uint32_t status) {
  char text[32];
  std::snprintf(text, sizeof text, status < 0x10000 ? "status %u" : "status 0x%08x", status);
  return text;
}

leaf_probe probe(one_leaf_document &sample, leaf_operation operation, const std::optional<std::string> &value,
                 const plugin &mapping, trace_log &log) {
  sample.set_value(value);
  sample.set_operation(operation == leaf_operation::remove ? YFW_OPERATION_DELETE : no_operation);
  client_request client = bare_request(sample.text(), to_client_operation(operation));
  const probe_outcome outcome = probe_request(sample.text(), std::move(client), mapping, log);
  leaf_probe result{value, {}, answer_text(outcome)};
  for (const native_operation &call : outcome.calls) {
    probe_effect effect{kind_of(call), call.steps.back().node, call.value};
    const bool is_known = std::find(result.effects.begin(), result.effects.end(), effect) != result.effects.end();
    // What a key or a container above the leaf causes is not an effect of the leaf.
    const bool is_own = call.source_node == nullptr || sample.is_leaf_itself(call.source_node);
    if (is_own && !is_known) {
      result.effects.push_back(std::move(effect));
    }
  }
  return result;
}

}  // namespace

std::string answer_text(const probe_outcome &outcome) {
  std::string text;
  if (outcome.status != YMAP_OK) {
    text = status_text(outcome.status);
  }
  if (!outcome.error_tag.empty()) {
    text += (text.empty() ? "" : ", ") + ("rejects tag " + in_quotes(outcome.error_tag));
  }
  if (text.empty() && outcome.value_lost) {
    text = "the value is lost in the translation";
  }
  if (!text.empty() && !outcome.problems.empty()) {
    text += ": " + outcome.problems.back();
  }
  return text;
}

coverage_row probe_client_leaf(const schema &modules, const lysc_node *leaf, const plugin &mapping, trace_log &log) {
  coverage_row row{leaf, {}};
  one_leaf_document sample(modules, leaf);
  const std::vector<std::string> values = sample_values(modules, leaf);
  for (const leaf_operation operation :
       {leaf_operation::get_config, leaf_operation::get, leaf_operation::set, leaf_operation::remove}) {
    coverage_cell &cell = row.cells.emplace_back(
        coverage_cell{operation, is_allowed(leaf, operation), mapping_state::not_probed, {}, {}});
    if (operation != leaf_operation::set) {
      cell.probes.push_back(probe(sample, operation, std::nullopt, mapping, log));
    } else {
      for (const std::string &value : values) {
        cell.probes.push_back(probe(sample, operation, value, mapping, log));
      }
    }
    set_state(cell);
  }
  return row;
}

}  // namespace yfw
