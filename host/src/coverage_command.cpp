#include <charconv>
#include <cstdio>
#include <memory>
#include <optional>
#include <system_error>

#include "commands.hpp"
#include "coverage_reports.hpp"
#include "input.hpp"
#include "measurement.hpp"
#include "setup.hpp"
#include "yfw/error.hpp"

namespace ymap {
namespace {

constexpr const char *coverage_help =
    "Examples:\n"
    "  ymap coverage --missing\n"
    "  ymap coverage --yang ~/models/openconfig\n"
    "  ymap coverage --format html > coverage.html      (link to a view: coverage.html#filter=speed)\n"
    "  ymap coverage --format json > old.json; …; ymap coverage --diff old.json --min 90\n\n"
    "Calls the plug-in for every leaf with sample values: every enumeration value, identity and\n"
    "boolean, both ends of a range, and a string that matches the pattern. Leaves of the client model\n"
    "are tried with get-config, get, set and delete, native leaves in replies. Percentages count the\n"
    "pairs of a leaf and an operation that the model allows; a pair is mapped when every sample value\n"
    "reaches a path.";

enum class report_format { text, json, html };

struct coverage_options {
  setup_options setup;
  report_format format = report_format::text;
  bool only_missing = false;
  std::optional<double> least_percent;
  std::string baseline;
};

// A check as CLI11 expects it: the error of a value, "" for a valid one.
std::string percent_error(const std::string &text) {
  double percent = 0;
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), percent);
  // NaN fails both comparisons.
  const bool is_percent =
      failure == std::errc() && end == text.data() + text.size() && percent >= 0.0 && percent <= 100.0;
  return is_percent ? "" : "invalid value " + yfw::in_quotes(text) + ", expected a number from 0 to 100";
}

std::string report(const coverage_view &view, report_format format) {
  switch (format) {
    case report_format::json:
      return coverage_as_json(view);
    case report_format::html:
      return coverage_as_html(view);
    case report_format::text:
      break;
  }
  return coverage_as_text(view);
}

void require_share(const yfw::coverage &measured, double least) {
  const yfw::coverage_share share = share_of(measured.client);
  if (share.percent() < least) {
    char text[160];
    std::snprintf(text, sizeof text, "%.1f %% of the client model is mapped, %zu of %zu, expected at least %g %%",
                  share.percent(), share.mapped, share.pairs, least);
    throw yfw::error(text);
  }
}

// Prints the differences. Throws `yfw::error` when something is no longer mapped.
void require_no_loss(const yfw::coverage &measured, const coverage_baseline &baseline, const std::string &file) {
  const coverage_changes changes = compare(baseline, baseline_of(measured));
  std::string text;
  for (const std::string &line : changes.lines) {
    text += line + "\n";
  }
  write_result(text);
  if (changes.lost) {
    throw yfw::error(yfw::place{file, 0, {}}, "leaves that this report has as mapped are no longer mapped");
  }
}

void run(const coverage_options &options) {
  const bool has_baseline = !options.baseline.empty();
  const coverage_baseline baseline =
      has_baseline ? read_baseline(read_text(options.baseline), display_name(options.baseline)) : coverage_baseline{};
  setup with(options.setup);
  const yfw::coverage measured = measure(with);
  if (has_baseline) {
    require_no_loss(measured, baseline, display_name(options.baseline));
  } else {
    write_result(report({measured, options.only_missing}, options.format));
  }
  if (options.least_percent) {
    require_share(measured, *options.least_percent);
  }
}

}  // namespace

void add_coverage(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("coverage", "Measure what a mapping does with every leaf.");
  command.footer(coverage_help);
  const auto options = std::make_shared<coverage_options>();
  add_setup(command, options->setup);
  CLI::Option *missing =
      command.add_flag("--missing", options->only_missing, "print only leaves that are not completely mapped");
  command.add_option("--min", options->least_percent, "fail when less of the client model is mapped")
      ->type_name("PERCENT")
      ->check(percent_error);
  CLI::Option *diff =
      command.add_option("--diff", options->baseline,
                         "print the differences from this JSON report; fail when something is no longer mapped");
  diff->type_name("OLD.json")->excludes(missing)->check(empty_name_error);
  add_choice<report_format>(
      command, "--format", "a table (default), JSON, or a page for a browser",
      {{"text", report_format::text}, {"json", report_format::json}, {"html", report_format::html}},
      [options](report_format format) { options->format = format; });
  command.get_option("--format")->excludes(diff);
  command.callback([options] { run(*options); });
}

}  // namespace ymap
