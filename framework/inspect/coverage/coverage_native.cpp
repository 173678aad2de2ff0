#include <algorithm>

#include "yfw/internal/coverage_document.hpp"
#include "yfw/internal/coverage_probes.hpp"
#include "yfw/internal/coverage_values.hpp"
#include "yfw/reply.hpp"

namespace yfw {
namespace {

// The leaves that a reply reports, with their values, and why it leaves something out.
struct reported {
  std::vector<std::pair<const lysc_node *, std::string>> leaves;
  std::string refusal;
};

void collect(const data_node *first, std::vector<std::pair<const lysc_node *, std::string>> &leaves) {
  for (const data_node *group = first; group != nullptr; group = group->next) {
    for (const data_node *node = group; node != nullptr; node = node->next_entry) {
      if (node->value) {
        leaves.emplace_back(node->schema, *node->value);
      }
      collect(node->first_child, leaves);
    }
  }
}

reported report_of(document &native, content wanted, const plugin &mapping, trace_log &log) {
  reported result;
  try {
    const reply translated = translate_reply(native, mapping, {.wanted = wanted, .checks_values = false}, log);
    collect(translated.data.first(), result.leaves);
    result.refusal = translated.notes.empty() ? "" : one_line(translated.notes.back().text);
  } catch (const error &refused) {
    result.refusal = refused.text();
  }
  return result;
}

bool holds(const reported &all, const std::pair<const lysc_node *, std::string> &leaf) {
  return std::find(all.leaves.begin(), all.leaves.end(), leaf) != all.leaves.end();
}

bool reports(const reported &all, const lysc_node *leaf) {
  return std::any_of(all.leaves.begin(), all.leaves.end(), [&](const auto &each) { return each.first == leaf; });
}

leaf_probe compare(const std::string &value, const reported &with, const reported &without) {
  leaf_probe result{value, {}, with.refusal};
  for (const auto &leaf : with.leaves) {
    if (!holds(without, leaf)) {
      result.effects.push_back({effect_kind::report, leaf.first, leaf.second});
    }
  }
  for (const auto &leaf : without.leaves) {
    // A walk that fails reports nothing at all.
    if (!reports(with, leaf.first) && with.refusal.empty()) {
      result.effects.push_back({effect_kind::withdraw, leaf.first, leaf.second});
    }
  }
  return result;
}

}  // namespace

coverage_row probe_native_leaf(const schema &modules, const lysc_node *leaf, const plugin &mapping, trace_log &log) {
  coverage_row row{leaf, {}};
  one_leaf_document made(modules, leaf);
  one_leaf_document bare(modules, leaf, true);
  for (const leaf_operation operation : {leaf_operation::get_config, leaf_operation::get}) {
    const content wanted = operation == leaf_operation::get ? content::all : content::config;
    const bool is_allowed = operation == leaf_operation::get || is_config(leaf);
    coverage_cell &cell =
        row.cells.emplace_back(coverage_cell{operation, is_allowed, mapping_state::not_probed, {}, {}});
    const reported without = is_key(leaf) ? reported{} : report_of(bare.text(), wanted, mapping, log);
    for (const std::string &value : sample_values(modules, leaf)) {
      made.set_value(value);
      cell.probes.push_back(compare(value, report_of(made.text(), wanted, mapping, log), without));
    }
    judge(cell);
  }
  return row;
}

}  // namespace yfw
