#include <algorithm>
#include <iterator>

#include "coverage_reports.hpp"
#include "json_report.hpp"

namespace ymap {
namespace {

constexpr size_t shape_version = 2;
constexpr yfw::leaf_operation all_operations[] = {yfw::leaf_operation::get_config, yfw::leaf_operation::get,
                                                  yfw::leaf_operation::set, yfw::leaf_operation::remove};

class coverage_json {
 public:
  coverage_json(const coverage_view &view, json_report &out) : view_(view), out_(out) {}

  void write() {
    out_.text("format", "ymap-coverage");
    out_.number("version", shape_version);
    out_.flag("only-missing", view_.only_missing);
    out_.object("summary", [&] {
      out_.object("client", [&] { add_summary(view_.measured.client); });
      out_.object("native", [&] { add_summary(view_.measured.native); });
    });
    add_rows("client", view_.measured.client);
    add_rows("native", view_.measured.native);
  }

 private:
  void add_share(std::string_view name, const yfw::coverage_share &share) {
    out_.object(name, [&] {
      out_.number("mapped", share.mapped);
      out_.number("pairs", share.pairs);
    });
  }

  void add_summary(const std::vector<yfw::coverage_row> &rows) {
    add_share("all", share_of(rows));
    for (const yfw::leaf_operation operation : all_operations) {
      if (const yfw::coverage_share share = share_of(rows, operation); share.pairs > 0) {
        add_share(to_string(operation), share);
      }
    }
  }

  void add_rows(std::string_view name, const std::vector<yfw::coverage_row> &rows) {
    out_.list(name, shown_rows(rows, view_.only_missing), [&](const yfw::coverage_row *row) {
      out_.text("path", yfw::qualified_path(row->leaf));
      out_.flag("config", yfw::is_config(row->leaf));
      out_.object("operations", [&] {
        for (const yfw::coverage_cell &cell : row->cells) {
          out_.object(to_string(cell.operation), [&] { add_cell(cell); });
        }
      });
    });
  }

  void add_cell(const yfw::coverage_cell &cell) {
    out_.text("state", to_string(cell.state));
    out_.flag("allowed", cell.is_allowed);
    out_.text_if_any("reason", cell.reason);
    std::vector<std::string> paths;
    std::ranges::transform(cell.targets(), std::back_inserter(paths), &yfw::qualified_path);
    out_.texts("paths", paths);
    out_.list("probes", cell.probes, [&](const yfw::leaf_probe &probe) { add_probe(probe); });
  }

  void add_probe(const yfw::leaf_probe &probe) {
    out_.text("value", probe.value);
    out_.flag("mapped", probe.is_mapped());
    out_.text_if_any("rejection", probe.rejection);
    out_.list("effects", probe.effects, [&](const yfw::probe_effect &effect) {
      out_.text("kind", to_string(effect.kind));
      out_.text("path", yfw::qualified_path(effect.node));
      out_.text("value", effect.value);
    });
  }

  const coverage_view &view_;
  json_report &out_;
};

}  // namespace

std::string coverage_as_json(const coverage_view &view) {
  return json_report::with([&](json_report &out) { coverage_json(view, out).write(); });
}

}  // namespace ymap
