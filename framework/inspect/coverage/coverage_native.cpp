#include <algorithm>

#include "yfw/internal/coverage_document.hpp"
#include "yfw/internal/coverage_probes.hpp"
#include "yfw/internal/coverage_values.hpp"
#include "yfw/reply.hpp"

namespace yfw {
namespace {

// The leaves that a reply reports, with their values, and why something is omitted.
struct reported_leaves {
  std::vector<std::pair<const lysc_node *, std::string>> leaves;
  std::string rejection;
};

void add_leaves(const data_node *first, std::vector<std::pair<const lysc_node *, std::string>> &leaves) {
  each_node(first, [&](const data_node &node) {
    if (node.value) {
      leaves.emplace_back(node.schema, *node.value);
    }
    add_leaves(node.first_child, leaves);
  });
}

reported_leaves reported_leaves_of(document &native, content wanted, const plugin &mapping, trace_log &log) {
  reported_leaves result;
  try {
    const reply translated = translate_reply(native, mapping, {.wanted = wanted, .checks_values = false}, log);
    add_leaves(translated.data.first(), result.leaves);
    result.rejection = translated.notes.empty() ? "" : one_line(translated.notes.back().text);
  } catch (const error &refused) {
    result.rejection = refused.text();
  }
  return result;
}

bool contains(const reported_leaves &all, const std::pair<const lysc_node *, std::string> &leaf) {
  return std::find(all.leaves.begin(), all.leaves.end(), leaf) != all.leaves.end();
}

bool reports(const reported_leaves &all, const lysc_node *leaf) {
  return std::any_of(all.leaves.begin(), all.leaves.end(), [&](const auto &each) { return each.first == leaf; });
}

leaf_probe compare(const std::string &value, const reported_leaves &with, const reported_leaves &without) {
  leaf_probe result{value, {}, with.rejection};
  for (const auto &leaf : with.leaves) {
    if (!contains(without, leaf)) {
      result.effects.push_back({effect_kind::report, leaf.first, leaf.second});
    }
  }
  for (const auto &leaf : without.leaves) {
    // A walk that fails reports nothing at all.
    if (!reports(with, leaf.first) && with.rejection.empty()) {
      result.effects.push_back({effect_kind::retract, leaf.first, leaf.second});
    }
  }
  return result;
}

}  // namespace

coverage_row probe_native_leaf(const schema &modules, const lysc_node *leaf, const plugin &mapping, trace_log &log) {
  coverage_row row{leaf, {}};
  one_leaf_document sample(modules, leaf);
  one_leaf_document without_leaf(modules, leaf, true);
  for (const leaf_operation operation : {leaf_operation::get_config, leaf_operation::get}) {
    const content wanted = operation == leaf_operation::get ? content::all : content::config;
    const bool is_allowed = operation == leaf_operation::get || is_config(leaf);
    coverage_cell &cell =
        row.cells.emplace_back(coverage_cell{operation, is_allowed, mapping_state::not_probed, {}, {}});
    const reported_leaves without =
        is_key(leaf) ? reported_leaves{} : reported_leaves_of(without_leaf.text(), wanted, mapping, log);
    for (const std::string &value : sample_values(modules, leaf)) {
      sample.set_value(value);
      cell.probes.push_back(compare(value, reported_leaves_of(sample.text(), wanted, mapping, log), without));
    }
    set_state(cell);
  }
  return row;
}

}  // namespace yfw
