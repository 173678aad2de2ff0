#include <algorithm>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>

#include "commands.hpp"
#include "input.hpp"
#include "json_report.hpp"
#include "setup.hpp"
#include "terminal.hpp"
#include "yfw/error.hpp"
#include "yfw/roundtrip.hpp"

namespace ymap {
namespace {

constexpr const char *roundtrip_help =
    "Examples:\n"
    "  ymap roundtrip\n"
    "  ymap roundtrip --accepted mapping/ethernet/accepted-differences --format json\n\n"
    "Checks round-trip properties with data trees of one leaf on an empty device in memory:\n"
    "  set-get        a leaf that was set reads back the same value\n"
    "  delete-get     a leaf that was deleted reads as absent, or as its default\n"
    "  absent-get     a leaf that was never set reads as absent, or as its default, when another leaf is set\n"
    "  native-stable  native data that a client reads and sets again is the same, and the client reads only\n"
    "                 values of its model\n"
    "  read-answered  each native node that a read reads changes some reply\n"
    "A value that is rejected with an error is not a difference. Reviewed differences are listed with their\n"
    "reasons in a file; the command fails for any other difference, and for a listed one that no longer occurs.";

struct roundtrip_options {
  setup_options setup;
  std::string accepted;  // empty: the file beside the plug-in, if there is one
  bool as_json = false;
};

// The differences that were found, compared with the accepted ones.
struct roundtrip_view {
  const yfw::roundtrip &found;
  std::vector<const yfw::roundtrip_difference *> accepted, unexpected;
  std::vector<const yfw::accepted_difference *> stale;
};

roundtrip_view compare(const yfw::roundtrip &found, const std::vector<yfw::accepted_difference> &accepted) {
  roundtrip_view view{found, {}, {}, {}};
  for (const yfw::roundtrip_difference &each : found.differences) {
    const bool is_accepted = std::ranges::any_of(accepted, [&](const auto &line) { return line.covers(each); });
    (is_accepted ? view.accepted : view.unexpected).push_back(&each);
  }
  for (const yfw::accepted_difference &line : accepted) {
    if (std::ranges::none_of(found.differences, [&](const auto &each) { return line.covers(each); })) {
      view.stale.push_back(&line);
    }
  }
  return view;
}

size_t count(const std::vector<const yfw::roundtrip_difference *> &differences, yfw::property which) {
  return static_cast<size_t>(std::ranges::count(differences, which, &yfw::roundtrip_difference::which));
}

std::string as_text(const roundtrip_view &view) {
  std::ostringstream out;
  out << "property          tried  rejected  accepted  unexpected\n";
  for (const yfw::property which : yfw::all_properties) {
    const yfw::property_count &counts = view.found.counts[static_cast<size_t>(which)];
    out << std::left << std::setw(16) << to_string(which) << std::right << std::setw(7) << counts.tried << std::setw(10)
        << counts.rejected << std::setw(10) << count(view.accepted, which) << std::setw(12)
        << count(view.unexpected, which) << '\n';
  }
  const yfw::state_counts &state = view.found.state;
  out << "operational state: " << state.tried << " values: " << state.reported << " mapped, " << state.omitted
      << " omitted with a warning, " << state.ignored << " ignored\n";
  for (const std::string &leaf : view.found.not_tried) {
    out << "not tried: " << leaf << '\n';
  }
  for (const yfw::roundtrip_difference *each : view.unexpected) {
    out << '\n' << to_string(each->which) << ' ' << each->path;
    out << (each->value ? " " + yfw::in_quotes(*each->value) : "") << ": " << each->what << '\n' << each->tree;
  }
  return out.str();
}

void add_counts(json_report &out, const roundtrip_view &view, yfw::property which) {
  const yfw::property_count &counts = view.found.counts[static_cast<size_t>(which)];
  out.number("tried", counts.tried);
  out.number("rejected", counts.rejected);
  out.number("accepted", count(view.accepted, which));
  out.number("unexpected", count(view.unexpected, which));
}

void add_differences(json_report &out, const char *name,
                     const std::vector<const yfw::roundtrip_difference *> &differences) {
  out.list(name, differences, [&](const yfw::roundtrip_difference *each) {
    out.text("property", to_string(each->which));
    out.text("path", each->path);
    out.text("value", each->value);
    out.text("what", each->what);
    out.json("tree", each->tree);
  });
}

std::string as_json(const roundtrip_view &view) {
  return json_report::with([&](json_report &out) {
    out.object("properties", [&] {
      for (const yfw::property which : yfw::all_properties) {
        out.object(to_string(which), [&] { add_counts(out, view, which); });
      }
    });
    out.object("operational-state", [&] {
      out.number("tried", view.found.state.tried);
      out.number("reported", view.found.state.reported);
      out.number("omitted", view.found.state.omitted);
      out.number("ignored", view.found.state.ignored);
    });
    add_differences(out, "unexpected", view.unexpected);
    add_differences(out, "accepted", view.accepted);
    out.list("stale", view.stale, [&](const yfw::accepted_difference *line) {
      out.number("line", line->line);
      out.text("property", to_string(line->which));
      out.text("path", line->path);
      out.text("value", line->value);
    });
    out.texts("not-tried", view.found.not_tried);
  });
}

// The file with the accepted differences, "" if there is none. Beside a plug-in it may have the name that version 0.2
// used.
std::string accepted_file(const roundtrip_options &options, const yfw::plugin &mapping) {
  if (!options.accepted.empty()) {
    return options.accepted;
  }
  std::filesystem::path beside = mapping.library();
  for (const char *suffix : {".accepted-differences", ".known-losses"}) {
    if (std::filesystem::exists(beside.replace_extension(suffix))) {
      return beside.string();
    }
  }
  return "";
}

yfw::roundtrip run_checks(setup &with) {
  progress shown("checking properties");
  return check_roundtrip(with.schema(), with.plugin(), with.trace(), std::ref(shown));
}

void run(const roundtrip_options &options) {
  setup with(options.setup);
  const std::string file = accepted_file(options, with.plugin());
  std::vector<yfw::accepted_difference> accepted;
  if (!file.empty()) {
    accepted = yfw::read_accepted_differences(read_text(file), display_name(file));
  }
  const yfw::roundtrip found = run_checks(with);
  const auto is_tried = [](const yfw::property_count &counts) { return counts.tried != 0; };
  if (std::ranges::none_of(found.counts, is_tried)) {
    throw yfw::error("no leaf was tried: the plug-in serves none of the modules");
  }
  const roundtrip_view view = compare(found, accepted);
  write_result(options.as_json ? as_json(view) : as_text(view));
  for (const yfw::accepted_difference *line : view.stale) {
    const yfw::error stale({display_name(file), line->line, line->path}, "'" + std::string(to_string(line->which)) +
                                                                             "' with " + yfw::in_quotes(line->value) +
                                                                             " no longer occurs; remove the line");
    std::cerr << "ymap: " << stale.what() << '\n';
  }
  if (!view.unexpected.empty() || !view.stale.empty()) {
    throw failure_reported();
  }
}

}  // namespace

void add_roundtrip(CLI::App &app) {
  CLI::App &command =
      *app.add_subcommand("roundtrip", "Check that values survive the way through both models and back.");
  command.footer(roundtrip_help);
  const auto options = std::make_shared<roundtrip_options>();
  add_setup(command, options->setup);
  command.add_option("--accepted", options->accepted, "accepted differences instead of those beside the plug-in")
      ->type_name("FILE")
      ->check(empty_name_error);
  add_format(command, options->as_json);
  command.callback([options] { run(*options); });
}

}  // namespace ymap
