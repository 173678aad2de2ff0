#include "yfw/roundtrip.hpp"

#include <algorithm>
#include <iterator>
#include <sstream>

#include "roundtrip_internal.hpp"
#include "yfw/internal/coverage_values.hpp"

namespace yfw {
namespace {

// Whether data in the node, or in what is below it, makes a difference to a client.
bool is_answered(const std::vector<coverage_row> &native, const lysc_node *node) {
  return std::ranges::any_of(native, [&](const coverage_row &row) {
    return is_within(row.leaf, node) && std::ranges::any_of(row.cells, [](const coverage_cell &cell) {
             return std::ranges::any_of(cell.probes, [](const leaf_probe &probe) { return !probe.effects.empty(); });
           });
  });
}

void check_reads(law_bench &bench, const coverage &measured) {
  for (const coverage_row &row : measured.high) {
    const coverage_cell &get = row.cells[static_cast<size_t>(leaf_operation::get)];
    for (const lysc_node *asked : get.targets()) {
      ++bench.count(law::read_answered).tried;
      if (!is_key(asked) && !is_answered(measured.native, asked)) {
        bench.report(law::read_answered, row.leaf, {}, "asks for '" + path(asked) + "', of which no reply tells",
                     text_for(bench.steps_to(row.leaf), bench.modules));
      }
    }
  }
}

state_count count_state(const std::vector<coverage_row> &native) {
  state_count counted;
  for (const coverage_row &row : native) {
    for (const leaf_probe &probe : row.cells[static_cast<size_t>(leaf_operation::get)].probes) {
      const bool is_state = !is_config(row.leaf);
      counted.tried += is_state ? 1 : 0;
      counted.reported += is_state && probe.is_mapped() ? 1 : 0;
      counted.left_out += is_state && !probe.refusal.empty() ? 1 : 0;
      counted.passed_over += is_state && probe.refusal.empty() && probe.effects.empty() ? 1 : 0;
    }
  }
  return counted;
}

// Runs a check that needs trees of the leaf.
void attempt(law_bench &bench, const lysc_node *leaf, const std::function<void()> &check) {
  if (sample_values(bench.modules, leaf).empty()) {
    bench.result.not_tried.push_back(path(leaf) + ": no value of its type is known to try");
    return;
  }
  try {
    check();
  } catch (const error &impossible) {
    bench.result.not_tried.emplace_back(path(leaf) + ": " + impossible.text());
  }
}

}  // namespace

std::string_view to_string(law which) {
  constexpr std::string_view words[] = {"set-get", "delete-get", "absent-get", "native-stable", "read-answered"};
  return words[static_cast<size_t>(which)];
}

std::vector<std::string> values_of(const data_tree &tree) {
  std::vector<std::string> values;
  std::ranges::transform(leaves_of(tree), std::back_inserter(values), &reported_leaf::value);
  return values;
}

std::vector<path_step> law_bench::steps_to(const lysc_node *node) const {
  return complete_path(node, modules).steps;
}

roundtrip check_roundtrip(const schema &modules, const plugin &mapping, trace_log &log, const progress_report &report) {
  law_bench bench(modules, mapping, log);
  trace_log silent;
  // The measurement is about half of the work.
  const auto told = [&](size_t done, size_t total) { return report ? report(done, 2 * total) : void(); };
  const coverage measured = measure_coverage(modules, mapping, silent, told);
  const size_t leaves = measured.high.size() + measured.native.size();
  size_t done = leaves;
  std::vector<const lysc_node *> configured;
  for (const coverage_row &row : measured.high) {
    if (is_config(row.leaf) && !is_key(row.leaf)) {
      configured.push_back(row.leaf);
    }
  }
  for (const lysc_node *leaf : configured) {
    told(done++, leaves);
    attempt(bench, leaf, [&] { check_client_leaf(bench, leaf, configured); });
  }
  for (const coverage_row &row : measured.native) {
    told(done++, leaves);
    if (!is_key(row.leaf)) {
      attempt(bench, row.leaf, [&] { check_native_leaf(bench, row.leaf); });
    }
  }
  check_reads(bench, measured);
  bench.result.state = count_state(measured.native);
  return std::move(bench.result);
}

}  // namespace yfw
