#include "yfw/coverage.hpp"

#include <algorithm>

#include "yfw/internal/coverage_probes.hpp"
#include "yfw/internal/manifest_nodes.hpp"
#include "yfw/node.hpp"

namespace yfw {
namespace {

// The leaves at and below a node, in the order of the modules.
void add_leaves(const schema &modules, const lysc_node *node, std::vector<const lysc_node *> &leaves) {
  if (holds_value(node)) {
    leaves.push_back(node);
  }
  for (const lysc_node *below : modules.children(node)) {
    add_leaves(modules, below, leaves);
  }
}

// What the entry points of one direction serve.
std::vector<const lysc_node *> served_leaves(const schema &modules, const manifest &description, direction dir) {
  std::vector<const lysc_node *> leaves;
  for (const entry_point &entry : description.entry_points) {
    const lysc_node *above = served_parent(entry, modules);
    if (entry.dir != dir || (above == nullptr && entry.at != "/")) {
      continue;  // without the module that it serves an entry point has nothing to do
    }
    for (const lysc_node *top : modules.children(above)) {
      if (module_name(top) == entry.module && !is_key(top)) {
        add_leaves(modules, top, leaves);
      }
    }
  }
  return leaves;
}

template <typename Probe>
std::vector<coverage_row> probe_all(const std::vector<const lysc_node *> &leaves, bool has_edits, Probe probe) {
  std::vector<coverage_row> rows;
  for (const lysc_node *leaf : leaves) {
    try {
      rows.push_back(probe(leaf));
    } catch (const error &impossible) {
      coverage_row &row = rows.emplace_back(coverage_row{leaf, {}});
      for (const leaf_operation operation :
           {leaf_operation::get_config, leaf_operation::get, leaf_operation::set, leaf_operation::remove}) {
        if (has_edits || operation < leaf_operation::set) {
          const bool is_allowed = operation == leaf_operation::get || is_config(leaf);
          row.cells.push_back({operation, is_allowed, mapping_state::not_probed, {}, impossible.text()});
        }
      }
    }
  }
  return rows;
}

// The native leaves that a read without a filter asks for.
std::vector<const lysc_node *> asked_by_everything(const schema &modules, const plugin &mapping, trace_log &log) {
  document nothing = document::read("{}", "", modules);
  client_request client;
  client.everything = true;
  std::vector<const lysc_node *> asked;
  for (const native_operation &call : probe_request(nothing, client, mapping, log).calls) {
    const lysc_node *node = call.steps.back().node;
    if (std::find(asked.begin(), asked.end(), node) == asked.end()) {
      asked.push_back(node);
    }
  }
  return asked;
}

size_t count_mapped(const std::vector<leaf_probe> &probes) {
  return static_cast<size_t>(
      std::count_if(probes.begin(), probes.end(), [](const leaf_probe &each) { return each.is_mapped(); }));
}

}  // namespace

std::string_view to_string(leaf_operation operation) {
  constexpr std::string_view words[] = {"get-config", "get", "set", "delete"};
  return words[static_cast<size_t>(operation)];
}

std::string_view to_string(mapping_state state) {
  constexpr std::string_view words[] = {
      "mapped", "mapped-to-several", "refused-value", "unmapped-with-error", "unmapped-silently", "not-probed"};
  return words[static_cast<size_t>(state)];
}

std::string_view to_string(effect_kind kind) {
  constexpr std::string_view words[] = {"read", "set", "delete", "report", "withdraw"};
  return words[static_cast<size_t>(kind)];
}

std::vector<const lysc_node *> coverage_cell::targets() const {
  std::vector<const lysc_node *> nodes;
  for (const leaf_probe &probe : probes) {
    for (const probe_effect &effect : probe.effects) {
      if (probe.is_mapped() && std::find(nodes.begin(), nodes.end(), effect.node) == nodes.end()) {
        nodes.push_back(effect.node);
      }
    }
  }
  return nodes;
}

bool coverage_row::is_missing() const {
  return std::any_of(cells.begin(), cells.end(), [](const coverage_cell &cell) { return cell.is_missing(); });
}

void judge(coverage_cell &cell) {
  const auto refused = std::find_if(cell.probes.begin(), cell.probes.end(),
                                    [](const leaf_probe &each) { return !each.refusal.empty(); });
  const size_t mapped = count_mapped(cell.probes);
  if (cell.probes.empty()) {
    cell.state = mapping_state::not_probed;
    cell.reason = "no value of its type is known to try";
    return;
  }
  if (mapped == cell.probes.size()) {
    cell.state = cell.targets().size() > 1 ? mapping_state::mapped_to_several : mapping_state::mapped;
  } else if (mapped > 0) {
    cell.state = mapping_state::refused_value;
  } else {
    cell.state = refused == cell.probes.end() ? mapping_state::unmapped_silently : mapping_state::unmapped_with_error;
  }
  cell.reason = refused == cell.probes.end() ? "" : refused->refusal;
}

void coverage_share::add(const coverage_cell &cell) {
  pairs += cell.is_allowed ? 1 : 0;
  mapped += cell.is_allowed && cell.is_mapped() ? 1 : 0;
}

coverage_share share_of(const std::vector<coverage_row> &rows) {
  coverage_share share;
  for (const coverage_row &row : rows) {
    std::for_each(row.cells.begin(), row.cells.end(), [&](const coverage_cell &cell) { share.add(cell); });
  }
  return share;
}

coverage_share share_of(const std::vector<coverage_row> &rows, leaf_operation operation) {
  coverage_share share;
  for (const coverage_row &row : rows) {
    for (const coverage_cell &cell : row.cells) {
      if (cell.operation == operation) {
        share.add(cell);
      }
    }
  }
  return share;
}

coverage measure_coverage(const schema &modules, const plugin &mapping, trace_log &log, const progress_report &report) {
  const auto high = served_leaves(modules, mapping.description(), direction::ox);
  const auto native = served_leaves(modules, mapping.description(), direction::xo);
  size_t done = 0;
  const auto count = [&] {
    if (report) {
      report(done++, high.size() + native.size());
    }
  };
  coverage result;
  result.high = probe_all(high, true, [&](const lysc_node *leaf) {
    count();
    return probe_high_leaf(modules, leaf, mapping, log);
  });
  result.native = probe_all(native, false, [&](const lysc_node *leaf) {
    count();
    return probe_native_leaf(modules, leaf, mapping, log);
  });
  result.asked_for = asked_by_everything(modules, mapping, log);
  return result;
}

}  // namespace yfw
