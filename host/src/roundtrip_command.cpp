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

constexpr const char *about_roundtrip =
    "Trees of one leaf go through the mapping and an embedded device that is empty. The laws:\n"
    "  set-get        what is set reads back the same\n"
    "  delete-get     what is deleted reads as absent, or as its default\n"
    "  absent-get     so does what was never set, where another leaf is\n"
    "  native-stable  native data, given to a client and set as it was read, is the same again, and all that the\n"
    "                 client gets are values of its model\n"
    "  read-answered  a read asks for no native node that replies pass over\n"
    "What is refused with an error is no loss: somebody is told. Losses that were reviewed stand in a file, one a\n"
    "line with its reason (docs/known-losses.md); any other, and one that no longer happens, is a failure.\n\n"
    "Examples:\n"
    "  ymap roundtrip\n"
    "  ymap roundtrip --allow mapping/ethernet/known-losses --format json";

struct roundtrip_options {
  setup_options setup;
  std::string allow;  // empty: the file beside the plug-in, if there is one
  bool as_json = false;
};

// What was found, beside what is known.
struct roundtrip_view {
  const yfw::roundtrip &found;
  std::vector<const yfw::broken_law *> known, unknown;
  std::vector<const yfw::known_loss *> stale;
};

roundtrip_view compare(const yfw::roundtrip &found, const std::vector<yfw::known_loss> &losses) {
  roundtrip_view view{found, {}, {}, {}};
  for (const yfw::broken_law &each : found.broken) {
    const bool is_known = std::ranges::any_of(losses, [&](const auto &loss) { return loss.covers(each); });
    (is_known ? view.known : view.unknown).push_back(&each);
  }
  for (const yfw::known_loss &loss : losses) {
    if (std::ranges::none_of(found.broken, [&](const auto &each) { return loss.covers(each); })) {
      view.stale.push_back(&loss);
    }
  }
  return view;
}

size_t count(const std::vector<const yfw::broken_law *> &losses, yfw::law which) {
  return static_cast<size_t>(std::ranges::count(losses, which, &yfw::broken_law::which));
}

std::string as_text(const roundtrip_view &view) {
  std::ostringstream out;
  out << "law               tried  refused  known losses  broken\n";
  for (const yfw::law which : yfw::all_laws) {
    const yfw::law_count &counts = view.found.counts[static_cast<size_t>(which)];
    out << std::left << std::setw(16) << to_string(which) << std::right << std::setw(7) << counts.tried << std::setw(9)
        << counts.refused << std::setw(14) << count(view.known, which) << std::setw(8) << count(view.unknown, which)
        << '\n';
  }
  const yfw::state_count &state = view.found.state;
  out << "native state: " << state.tried << " values tried, " << state.reported << " reach a client, " << state.left_out
      << " are left out with a note, " << state.passed_over << " are passed over\n";
  for (const std::string &leaf : view.found.not_tried) {
    out << "not tried: " << leaf << '\n';
  }
  for (const yfw::broken_law *each : view.unknown) {
    out << '\n' << to_string(each->which) << ' ' << each->path;
    out << (each->value ? " " + yfw::in_quotes(*each->value) : "") << ": " << each->what << '\n' << each->tree;
  }
  return out.str();
}

void add_counts(json_report &out, const roundtrip_view &view, yfw::law which) {
  const yfw::law_count &counts = view.found.counts[static_cast<size_t>(which)];
  out.number("tried", counts.tried);
  out.number("refused", counts.refused);
  out.number("known", count(view.known, which));
  out.number("broken", count(view.unknown, which));
}

void add_losses(json_report &out, const char *name, const std::vector<const yfw::broken_law *> &losses) {
  out.list(name, losses, [&](const yfw::broken_law *each) {
    out.text("law", to_string(each->which));
    out.text("path", each->path);
    out.text("value", each->value);
    out.text("what", each->what);
    out.json("tree", each->tree);
  });
}

std::string as_json(const roundtrip_view &view) {
  return json_report::with([&](json_report &out) {
    out.object("laws", [&] {
      for (const yfw::law which : yfw::all_laws) {
        out.object(to_string(which), [&] { add_counts(out, view, which); });
      }
    });
    out.object("native-state", [&] {
      out.number("tried", view.found.state.tried);
      out.number("reported", view.found.state.reported);
      out.number("left-out", view.found.state.left_out);
      out.number("passed-over", view.found.state.passed_over);
    });
    add_losses(out, "broken", view.unknown);
    add_losses(out, "known", view.known);
    out.list("stale", view.stale, [&](const yfw::known_loss *loss) {
      out.number("line", loss->line);
      out.text("law", to_string(loss->which));
      out.text("path", loss->path);
      out.text("value", loss->value);
    });
    out.texts("not-tried", view.found.not_tried);
  });
}

std::string losses_file(const roundtrip_options &options, const yfw::plugin &mapping) {
  if (!options.allow.empty()) {
    return options.allow;
  }
  std::filesystem::path beside = mapping.library();
  beside.replace_extension(".known-losses");
  return std::filesystem::exists(beside) ? beside.string() : "";
}

yfw::roundtrip checked(setup &with) {
  progress shown("checking laws");
  return check_roundtrip(with.schema(), with.plugin(), with.trace(), std::ref(shown));
}

void run(const roundtrip_options &options) {
  setup with(options.setup);
  const std::string file = losses_file(options, with.plugin());
  std::vector<yfw::known_loss> losses;
  if (!file.empty()) {
    losses = yfw::read_known_losses(read_text(file), display_name(file));
  }
  const yfw::roundtrip found = checked(with);
  const auto is_tried = [](const yfw::law_count &counts) { return counts.tried != 0; };
  if (std::ranges::none_of(found.counts, is_tried)) {
    throw yfw::error("nothing was tried: the modules have no leaf that the plug-in serves");
  }
  const roundtrip_view view = compare(found, losses);
  write_result(options.as_json ? as_json(view) : as_text(view));
  for (const yfw::known_loss *loss : view.stale) {
    const yfw::error stale({display_name(file), loss->line, loss->path}, "'" + std::string(to_string(loss->which)) +
                                                                             "' with " + yfw::in_quotes(loss->value) +
                                                                             " is no loss any more; take the line out");
    std::cerr << "ymap: " << stale.what() << '\n';
  }
  if (!view.unknown.empty() || !view.stale.empty()) {
    throw failure_reported();
  }
}

}  // namespace

void add_roundtrip(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("roundtrip", "Check that what goes through a mapping comes back.");
  command.footer(about_roundtrip);
  const auto options = std::make_shared<roundtrip_options>();
  add_setup(command, options->setup);
  command.add_option("--allow", options->allow, "known losses instead of those beside the plug-in")
      ->type_name("FILE")
      ->check(empty_name_fault);
  add_format(command, options->as_json);
  command.callback([options] { run(*options); });
}

}  // namespace ymap
