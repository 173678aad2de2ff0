#include "yfw/roundtrip.hpp"

#include <algorithm>
#include <iterator>
#include <sstream>

#include "roundtrip_internal.hpp"
#include "yfw/internal/coverage_values.hpp"

namespace yfw {
namespace {

// Whether data at or below the node changes what a client reads.
bool is_reported(const std::vector<coverage_row> &native, const lysc_node *node) {
  return std::ranges::any_of(native, [&](const coverage_row &row) {
    return is_within(row.leaf, node) && std::ranges::any_of(row.cells, [](const coverage_cell &cell) {
             return std::ranges::any_of(cell.probes, [](const leaf_probe &probe) { return !probe.effects.empty(); });
           });
  });
}

void check_reads(roundtrip_run &run, const coverage &measured) {
  for (const coverage_row &row : measured.client) {
    const coverage_cell &get = row.cells[static_cast<size_t>(leaf_operation::get)];
    for (const lysc_node *read : get.targets()) {
      ++run.count(property::read_answered).tried;
      if (!is_key(read) && !is_reported(measured.native, read)) {
        run.report(property::read_answered, row.leaf, {}, "reads '" + path(read) + "', which no reply reports",
                   text_for(run.steps_to(row.leaf), run.modules));
      }
    }
  }
}

state_counts count_state(const std::vector<coverage_row> &native) {
  state_counts counted;
  for (const coverage_row &row : native) {
    for (const leaf_probe &probe : row.cells[static_cast<size_t>(leaf_operation::get)].probes) {
      const bool is_state = !is_config(row.leaf);
      counted.tried += is_state ? 1 : 0;
      counted.reported += is_state && probe.is_mapped() ? 1 : 0;
      counted.omitted += is_state && !probe.rejection.empty() ? 1 : 0;
      counted.ignored += is_state && probe.rejection.empty() && probe.effects.empty() ? 1 : 0;
    }
  }
  return counted;
}

// Runs a check that needs data trees with the leaf; without a sample value it is not tried.
void run_check(roundtrip_run &run, const lysc_node *leaf, const std::function<void()> &check) {
  if (sample_values(run.modules, leaf).empty()) {
    run.result.not_tried.push_back(path(leaf) + ": no sample value of its type is known");
    return;
  }
  try {
    check();
  } catch (const error &failure) {
    run.result.not_tried.emplace_back(path(leaf) + ": " + failure.text());
  }
}

}  // namespace

std::string_view to_string(property which) {
  constexpr std::string_view names[] = {"set-get", "delete-get", "absent-get", "native-stable", "read-answered"};
  return names[static_cast<size_t>(which)];
}

std::vector<std::string> values_of(const data_tree &tree) {
  std::vector<std::string> values;
  std::ranges::transform(leaves_of(tree), std::back_inserter(values), &reported_leaf::value);
  return values;
}

std::vector<path_step> roundtrip_run::steps_to(const lysc_node *node) const {
  return complete_path(node, modules).steps;
}

roundtrip check_roundtrip(const schema &modules, const plugin &mapping, trace_log &log, const progress_report &report) {
  roundtrip_run run(modules, mapping, log);
  trace_log silent;
  // Measuring the coverage is about half of the work.
  const auto report_half = [&](size_t done, size_t total) { return report ? report(done, 2 * total) : void(); };
  const coverage measured = measure_coverage(modules, mapping, silent, report_half);
  const size_t leaves = measured.client.size() + measured.native.size();
  size_t done = leaves;
  std::vector<const lysc_node *> configured;
  for (const coverage_row &row : measured.client) {
    if (is_config(row.leaf) && !is_key(row.leaf)) {
      configured.push_back(row.leaf);
    }
  }
  for (const lysc_node *leaf : configured) {
    report_half(done++, leaves);
    run_check(run, leaf, [&] { check_client_leaf(run, leaf, configured); });
  }
  for (const coverage_row &row : measured.native) {
    report_half(done++, leaves);
    if (!is_key(row.leaf)) {
      run_check(run, row.leaf, [&] { check_native_leaf(run, row.leaf); });
    }
  }
  check_reads(run, measured);
  run.result.state = count_state(measured.native);
  return std::move(run.result);
}

}  // namespace yfw
