// A measured coverage in the three forms in which it is printed, and compared with a baseline.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/coverage.hpp"

namespace ymap {

struct coverage_view {
  const yfw::coverage &measured;
  bool only_missing = false;  // show only leaves that are not completely mapped
};

// The rows to show.
std::vector<const yfw::coverage_row *> shown_rows(const std::vector<yfw::coverage_row> &rows, bool only_missing);

// A table and the shares that are mapped, in colour when standard output has colours.
std::string coverage_as_text(const coverage_view &view);

// Described in docs/json.md.
std::string coverage_as_json(const coverage_view &view);

// One page without external resources.
std::string coverage_as_html(const coverage_view &view);

// The result of one pair of a leaf and an operation, in a baseline or a new measurement.
struct coverage_entry {
  bool is_mapped;
  std::string state;
  std::set<std::string> accepted;  // the values that reach a path; empty for operations without values
  std::set<std::string> paths;     // the paths that are reached
  // The effects of mapped probes by value, "" for operations without values: "set /path 'full'".
  std::map<std::string, std::string> results;
};
using coverage_baseline = std::map<std::string, coverage_entry>;  // by "set /path" or "reply get /path"

coverage_baseline baseline_of(const yfw::coverage &measured);

// Reads a report of `coverage_as_json`, of this version or the one before. `file` is for messages. Throws `yfw::error`
// for anything else, also for a report of missing leaves only and for an unknown state.
coverage_baseline read_baseline(const std::string &text, const std::string &file);

struct coverage_changes {
  std::vector<std::string> lines;  // one per difference
  bool lost = false;               // something that was mapped is no longer mapped
};

coverage_changes compare(const coverage_baseline &older, const coverage_baseline &newer);

}  // namespace ymap
