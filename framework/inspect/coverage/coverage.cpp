#include "yfw/coverage.hpp"

#include <algorithm>

#include "yfw/internal/coverage_probes.hpp"
#include "yfw/internal/manifest_nodes.hpp"
#include "yfw/manifest.hpp"
#include "yfw/node.hpp"
#include "yfw/plugin.hpp"

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

// The leaves that the entry points of one direction serve.
std::vector<const lysc_node *> served_leaves(const schema &modules, const manifest &description, direction dir) {
  std::vector<const lysc_node *> leaves;
  for (const entry_point &entry : description.entry_points) {
    const lysc_node *above = served_parent(entry, modules);
    if (entry.dir != dir || (above == nullptr && entry.at != "/")) {
      continue;  // its module is not among those in force
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
    } catch (const error &failure) {
      coverage_row &row = rows.emplace_back(coverage_row{leaf, {}});
      for (const leaf_operation operation :
           {leaf_operation::get_config, leaf_operation::get, leaf_operation::set, leaf_operation::remove}) {
        if (has_edits || operation < leaf_operation::set) {
          const bool is_allowed = operation == leaf_operation::get || is_config(leaf);
          row.cells.push_back({operation, is_allowed, mapping_state::not_probed, {}, failure.text()});
        }
      }
    }
  }
  return rows;
}

// The native leaves that a read without a filter reads.
std::vector<const lysc_node *> leaves_read_by_default(const schema &modules, const plugin &mapping, trace_log &log) {
  document empty = document::read("{}", "", modules);
  client_request client;
  client.everything = true;
  std::vector<const lysc_node *> leaves;
  for (const native_operation &call : probe_request(empty, client, mapping, log).calls) {
    const lysc_node *node = call.steps.back().node;
    if (std::find(leaves.begin(), leaves.end(), node) == leaves.end()) {
      leaves.push_back(node);
    }
  }
  return leaves;
}

size_t count_mapped(const std::vector<leaf_probe> &probes) {
  return static_cast<size_t>(
      std::count_if(probes.begin(), probes.end(), [](const leaf_probe &each) { return each.is_mapped(); }));
}

}  // namespace

std::string_view to_string(leaf_operation operation) {
  constexpr std::string_view names[] = {"get-config", "get", "set", "delete"};
  return names[static_cast<size_t>(operation)];
}

std::string_view to_string(mapping_state state) {
  constexpr std::string_view names[] = {"mapped", "multiple", "partial", "rejected", "unmapped", "not-probed"};
  return names[static_cast<size_t>(state)];
}

std::string_view to_string(effect_kind kind) {
  constexpr std::string_view names[] = {"read", "set", "delete", "report", "retract"};
  return names[static_cast<size_t>(kind)];
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

void set_state(coverage_cell &cell) {
  const auto rejected = std::find_if(cell.probes.begin(), cell.probes.end(),
                                     [](const leaf_probe &each) { return !each.rejection.empty(); });
  const size_t mapped = count_mapped(cell.probes);
  if (cell.probes.empty()) {
    cell.state = mapping_state::not_probed;
    cell.reason = "no sample value of its type is known";
    return;
  }
  if (mapped == cell.probes.size()) {
    cell.state = cell.targets().size() > 1 ? mapping_state::multiple : mapping_state::mapped;
  } else if (mapped > 0) {
    cell.state = mapping_state::partial;
  } else {
    cell.state = rejected == cell.probes.end() ? mapping_state::unmapped : mapping_state::rejected;
  }
  cell.reason = rejected == cell.probes.end() ? "" : rejected->rejection;
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
  const auto client = served_leaves(modules, mapping.description(), direction::ox);
  const auto native = served_leaves(modules, mapping.description(), direction::xo);
  size_t done = 0;
  const auto count = [&] {
    if (report) {
      report(done++, client.size() + native.size());
    }
  };
  coverage result;
  result.client = probe_all(client, true, [&](const lysc_node *leaf) {
    count();
    return probe_client_leaf(modules, leaf, mapping, log);
  });
  result.native = probe_all(native, false, [&](const lysc_node *leaf) {
    count();
    return probe_native_leaf(modules, leaf, mapping, log);
  });
  result.read_by_default = leaves_read_by_default(modules, mapping, log);
  return result;
}

}  // namespace yfw
