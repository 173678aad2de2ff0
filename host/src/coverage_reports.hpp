// What was measured of a mapping, in the three forms in which it is printed.
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
  bool only_missing = false;  // show only leaves of which something that the model allows is not mapped
};

// The rows to show.
std::vector<const yfw::coverage_row *> shown_rows(const std::vector<yfw::coverage_row> &rows, bool only_missing);

// A table, and how much is mapped; with colours when standard output shows them.
std::string coverage_as_text(const coverage_view &view);

// The shape is told in docs/json.md.
std::string coverage_as_json(const coverage_view &view);

// One page that needs nothing else.
std::string coverage_as_html(const coverage_view &view);

// What an older report and a newer one tell of each pair of a leaf and an operation.
struct coverage_entry {
  bool is_mapped;
  std::string state;
  std::set<std::string> taken;  // the values that reach a path; empty where no values are tried
  std::set<std::string> paths;  // that are reached
  // Of mapped probes, by value, or "" where none is tried: "set /path 'full'".
  std::map<std::string, std::string> results;
};
using coverage_ledger = std::map<std::string, coverage_entry>;  // by "set /path" or "reply get /path"

coverage_ledger ledger_of(const yfw::coverage &measured);

// Reads what `coverage_as_json` wrote. `file` is for messages. Throws `yfw::error` for anything else, also for a report
// of missing leaves only, which tells nothing of the others, and for a state that no report has.
coverage_ledger read_ledger(const std::string &text, const std::string &file);

struct coverage_changes {
  std::vector<std::string> lines;  // also of what is mapped otherwise than before
  bool lost = false;               // something that was mapped no longer is
};

coverage_changes compare(const coverage_ledger &older, const coverage_ledger &newer);

}  // namespace ymap
