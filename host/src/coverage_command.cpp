#include <charconv>
#include <cstdio>
#include <memory>
#include <optional>
#include <system_error>

#include "commands.hpp"
#include "coverage_reports.hpp"
#include "input.hpp"
#include "setup.hpp"
#include "yfw/error.hpp"

namespace ymap {
namespace {

constexpr const char *about_coverage =
    "Nothing is declared: every leaf is tried, with every enumeration value, identity and boolean, both\n"
    "ends of a range, and a text that fits the pattern. The high model is asked by get-config, get, set\n"
    "and delete; native leaves are put into replies. Percentages count the pairs of a leaf and an\n"
    "operation that the model allows: state is only read. A pair counts as mapped when every value that\n"
    "was tried reaches a path.\n\n"
    "Examples:\n"
    "  ymap coverage\n"
    "  ymap coverage --missing --yang ~/models/openconfig\n"
    "  ymap coverage --format html > coverage.html      (share a view: coverage.html#filter=speed)\n"
    "  ymap coverage --format json > old.json; …; ymap coverage --diff old.json --min 90";

enum class report_format { text, json, html };

struct coverage_options {
  setup_options setup;
  report_format format = report_format::text;
  bool only_missing = false;
  std::optional<double> least_percent;
  std::string older;
};

// Tells what is wrong with a value, as CLI11 wants it; nothing: it is in order.
std::string percent_fault(const std::string &text) {
  double percent = 0;
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), percent);
  // What is not a number is not in the range either.
  const bool is_percent =
      failure == std::errc() && end == text.data() + text.size() && percent >= 0.0 && percent <= 100.0;
  return is_percent ? "" : yfw::in_quotes(text) + " is not a number from 0 to 100";
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
  const yfw::coverage_share share = share_of(measured.high);
  if (share.percent() < least) {
    char text[160];
    std::snprintf(text, sizeof text,
                  "mapped are %.1f %% of the high model, %zu of %zu, and not the %g %% that --min asks for",
                  share.percent(), share.mapped, share.pairs, least);
    throw yfw::error(text);
  }
}

// Prints what changed.
void require_no_loss(const yfw::coverage &measured, const coverage_ledger &older, const std::string &file) {
  const coverage_changes changes = compare(older, ledger_of(measured));
  std::string text;
  for (const std::string &line : changes.lines) {
    text += line + "\n";
  }
  write_result(text);
  if (changes.lost) {
    throw yfw::error(yfw::place{file, 0, {}}, "something that is mapped there no longer is");
  }
}

void run(const coverage_options &options) {
  const bool has_older = !options.older.empty();
  const coverage_ledger older =
      has_older ? read_ledger(read_text(options.older), display_name(options.older)) : coverage_ledger{};
  setup with(options.setup);
  const yfw::coverage measured = measure(with);
  if (has_older) {
    require_no_loss(measured, older, display_name(options.older));
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
  command.footer(about_coverage);
  const auto options = std::make_shared<coverage_options>();
  add_setup(command, options->setup);
  CLI::Option *missing = command.add_flag("--missing", options->only_missing, "only leaves that are not wholly mapped");
  command.add_option("--min", options->least_percent, "fail when less than this share of the high model is mapped")
      ->type_name("PERCENT")
      ->check(percent_fault);
  CLI::Option *diff = command.add_option("--diff", options->older,
                                         "print what changed since that JSON report; fail when something was lost");
  diff->type_name("OLD.json")->excludes(missing)->check(empty_name_fault);
  add_choice<report_format>(
      command, "--format", "a table (default), JSON (docs/json.md) or a page for a browser",
      {{"text", report_format::text}, {"json", report_format::json}, {"html", report_format::html}},
      [options](report_format format) { options->format = format; });
  command.get_option("--format")->excludes(diff);
  command.callback([options] { run(*options); });
}

}  // namespace ymap
