#include <algorithm>
#include <cstdio>
#include <map>
#include <sstream>

#include "coverage_reports.hpp"
#include "terminal.hpp"
#include "yfw/error.hpp"

namespace ymap {
namespace {

using yfw::coverage_cell;
using yfw::coverage_row;
using yfw::mapping_state;

constexpr yfw::leaf_operation operations[] = {yfw::leaf_operation::get_config, yfw::leaf_operation::get,
                                              yfw::leaf_operation::set, yfw::leaf_operation::remove};
constexpr size_t native_columns = 2;  // nothing is set by a reply
constexpr size_t column = 12;

// A state as the table shows it.
struct state_label {
  std::string text;
  colour in;
};

colour colour_of(mapping_state state) {
  switch (state) {
    case mapping_state::mapped:
      return colour::green;
    case mapping_state::multiple:
      return colour::cyan;
    case mapping_state::partial:
    case mapping_state::not_probed:
      return colour::yellow;
    case mapping_state::rejected:
    case mapping_state::unmapped:
      break;
  }
  return colour::red;
}

state_label label_of(const coverage_cell &cell, bool is_client) {
  const std::string text(to_string(cell.state));
  if (!is_client && cell.state == mapping_state::unmapped) {
    return {cell.is_allowed ? "ignored" : "n/a", colour::dim};  // a reply may contain more than was requested
  }
  if (cell.is_allowed) {
    return {text, colour_of(cell.state)};
  }
  if (cell.is_mapped()) {
    return {"(" + text + ")", colour::magenta};
  }
  return {cell.state == mapping_state::unmapped ? "(unmapped)" : "n/a", colour::dim};
}

std::string parent_path(const coverage_row &row) {
  const lysc_node *above = yfw::parent(row.leaf);
  return above == nullptr ? "/" : yfw::path(above);
}

// The values of those probes of a cell that fit, in quotes: "'a', 'b'".
template <typename is_wanted_t>
std::string values(const coverage_cell &cell, is_wanted_t is_wanted) {
  std::string text;
  for (const yfw::leaf_probe &probe : cell.probes) {
    if (probe.value && is_wanted(probe)) {
      text += (text.empty() ? "" : ", ") + yfw::in_quotes(*probe.value);
    }
  }
  return text;
}

std::string painted(std::string_view text, colour in) {
  return painted(stream::out, in, text);
}

class table {
 public:
  explicit table(const coverage_view &view) : view_(view) {}

  std::string text() {
    add("client model", view_.measured.client, std::size(operations));
    add("native model", view_.measured.native, native_columns);
    add_summary();
    return out_.str();
  }

 private:
  // The text padded to a column; colours have no width.
  static std::string in_column(const std::string &text, size_t width, colour in) {
    const size_t gap = text.size() < width ? width - text.size() : 1;
    return painted(text, in) + std::string(gap, ' ');
  }

  void add(const char *title, const std::vector<coverage_row> &rows, size_t columns) {
    const auto shown = shown_rows(rows, view_.only_missing);
    if (shown.empty()) {
      return;
    }
    size_t width = std::string(title).size();
    for (const coverage_row *row : shown) {
      width = std::max(width, 2 + yfw::name(row->leaf).size());
    }
    std::string head = in_column(title, width + 2, colour::bold);
    for (size_t i = 0; i < columns; ++i) {
      head += in_column(std::string(to_string(operations[i])), column, colour::bold);
    }
    out_ << head << painted(columns == native_columns ? "reported as" : "native", colour::bold) << '\n';
    std::string above;
    for (const coverage_row *row : shown) {
      if (const std::string here = parent_path(*row); here != above) {
        out_ << painted(here, colour::dim) << '\n';
        above = here;
      }
      add_row(*row, width + 2);
    }
    out_ << '\n';
  }

  void add_row(const coverage_row &row, size_t width) {
    std::string line = "  " + in_column(std::string(yfw::name(row.leaf)), width - 2, colour::none);
    for (const coverage_cell &cell : row.cells) {
      const state_label state = label_of(cell, row.cells.size() > native_columns);
      line += in_column(state.text, column, state.in);
    }
    std::vector<const lysc_node *> targets;
    for (const coverage_cell &cell : row.cells) {
      for (const lysc_node *target : cell.targets()) {
        if (std::find(targets.begin(), targets.end(), target) == targets.end()) {
          targets.push_back(target);
        }
      }
    }
    const std::string margin(width + column * row.cells.size(), ' ');
    for (size_t i = 0; i < targets.size(); ++i) {
      line += (i == 0 ? "" : "\n" + margin) + yfw::path(targets[i]);
    }
    out_ << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
    add_reasons(row);
  }

  // Why the leaf is not mapped, with all operations that have the same reason.
  void add_reasons(const coverage_row &row) {
    std::vector<std::pair<std::string, std::string>> reasons;  // and the operations
    for (const coverage_cell &cell : row.cells) {
      const std::string reason = cell.is_missing() ? reason_of(cell) : "";
      const auto known = std::ranges::find(reasons, reason, &std::pair<std::string, std::string>::first);
      if (!reason.empty() && known == reasons.end()) {
        reasons.emplace_back(reason, to_string(cell.operation));
      } else if (!reason.empty()) {
        known->second.append(", ").append(to_string(cell.operation));
      }
    }
    for (const auto &[reason, row_operations] : reasons) {
      out_ << "      " << painted(std::string(row_operations).append(" ").append(reason), colour::dim) << '\n';
    }
  }

  static std::string reason_of(const coverage_cell &cell) {
    if (cell.state != mapping_state::partial) {
      const char *verb = cell.state == mapping_state::not_probed ? "not tried: " : "rejected: ";
      return cell.reason.empty() ? "" : verb + cell.reason;
    }
    const std::string rejected = values(cell, [](const auto &probe) { return !probe.rejection.empty(); });
    const std::string ignored =
        values(cell, [](const auto &probe) { return probe.rejection.empty() && !probe.is_mapped(); });
    return (rejected.empty() ? "" : "rejects " + rejected) + (rejected.empty() || ignored.empty() ? "" : "; ") +
           (ignored.empty() ? "" : "ignores " + ignored);
  }

  void add_summary() {
    out_ << painted("mapped, of the operations that the model allows", colour::bold) << '\n' << std::string(14, ' ');
    for (const yfw::leaf_operation operation : operations) {
      out_ << in_column(std::string(to_string(operation)), 18, colour::bold);
    }
    out_ << painted("all", colour::bold) << '\n';
    add_shares("client model", view_.measured.client, std::size(operations));
    add_shares("native model", view_.measured.native, native_columns);
    out_ << "\nmapped: every sample value reaches one path; multiple: more than one path; partial: some values reach "
            "one;\n"
            "rejected, unmapped: no value does, with or without an error; ignored: no effect on replies;\n"
            "n/a: not allowed by the model; (mapped), (unmapped): not allowed by the model, but accepted by the "
            "mapping\n";
  }

  void add_shares(const char *title, const std::vector<coverage_row> &rows, size_t columns) {
    out_ << in_column(title, 14, colour::none);
    for (size_t i = 0; i < std::size(operations); ++i) {
      out_ << in_column(i < columns ? share_text(share_of(rows, operations[i])) : "", 18, colour::none);
    }
    out_ << share_text(share_of(rows)) << '\n';
  }

  static std::string share_text(const yfw::coverage_share &share) {
    char text[64];
    std::snprintf(text, sizeof text, "%zu/%zu %.1f %%", share.mapped, share.pairs, share.percent());
    return text;
  }

  const coverage_view &view_;
  std::ostringstream out_;
};

}  // namespace

std::vector<const coverage_row *> shown_rows(const std::vector<coverage_row> &rows, bool only_missing) {
  std::vector<const coverage_row *> shown;
  for (const coverage_row &row : rows) {
    if (!only_missing || row.is_missing()) {
      shown.push_back(&row);
    }
  }
  return shown;
}

std::string coverage_as_text(const coverage_view &view) {
  return table(view).text();
}

}  // namespace ymap
