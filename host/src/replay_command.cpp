#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands.hpp"
#include "input.hpp"
#include "setup.hpp"
#include "terminal.hpp"
#include "yfw/capture.hpp"
#include "yfw/error.hpp"

namespace ymap {
namespace {

namespace fs = std::filesystem;

constexpr const char *replay_help =
    "Examples:\n"
    "  ymap replay captures\n"
    "  ymap replay --plugin build/libymap_oc_ethernet.so captures/0001-*.capture\n"
    "  ymap replay captures --old v1/libymap_oc_ethernet.so --new v2/libymap_oc_ethernet.so\n\n"
    "Calls the plug-in with the arguments of each capture, returns the captured results of its\n"
    "framework calls, and prints the first difference. No modules, manifest or device are needed.\n"
    "With --old and --new, two builds are compared with each other.\n\n"
    "Exit code 0: no differences, 1: differences.";

struct replay_options {
  std::vector<std::string> from;
  std::string plugin;
  std::string old_build;
  std::string new_build;
};

std::vector<std::string> captures_of(const std::vector<std::string> &names) {
  std::vector<std::string> files;
  for (const std::string &name : names) {
    if (!fs::is_directory(name)) {
      files.push_back(name);
      continue;
    }
    const size_t before = files.size();
    for (const auto &entry : fs::directory_iterator(name)) {
      if (entry.path().extension() == ".capture") {
        files.push_back(entry.path().string());
      }
    }
    if (files.size() == before) {
      throw yfw::error(yfw::place{name}, "no captures, expected files of 'ymap record'");
    }
    std::sort(files.begin() + static_cast<std::ptrdiff_t>(before), files.end());
  }
  return files;
}

std::string event_text(const std::optional<yfw::plugin_event> &event) {
  return event ? event->text : "(end)";
}

// Two indented lines with both events, and a third one with the arguments that differ.
std::string difference_text(const yfw::difference &where, const char *expected, const char *actual) {
  std::string text = "  " + painted(stream::out, colour::green, expected) + ' ' + event_text(where.expected) + "\n  " +
                     painted(stream::out, colour::red, actual) + ' ' + event_text(where.actual) + '\n';
  std::string names;
  for (const std::string &name : where.differing_arguments()) {
    names += (names.empty() ? "" : ", ") + name;
  }
  return names.empty() ? text : text + "  differs in " + names + '\n';
}

std::string place_text(const std::string &file, const std::vector<yfw::plugin_event> &captured,
                       const std::optional<yfw::plugin_event> &expected) {
  const unsigned line = expected ? expected->line : captured.empty() ? 0 : captured.back().line;
  return line == 0 ? file : file + ':' + std::to_string(line);
}

// Compares a replay with the capture. The capture of a plug-in that did not return is compared up to its end.
bool compare_with_capture(const std::string &file, const yfw::plugin &mapping) {
  const yfw::capture recorded = yfw::capture::read(read_text(file), file);
  std::vector<yfw::plugin_event> actual = replay(recorded, mapping);
  if (!recorded.has_returned() && actual.size() > recorded.events().size()) {
    actual.resize(recorded.events().size());
  }
  const auto where = first_difference(recorded.events(), actual);
  const std::string cut =
      recorded.has_returned() ? "" : " up to the end of the capture, in which the plug-in did not return";
  write_result(where ? place_text(file, recorded.events(), where->expected) + ": differs\n" +
                           difference_text(*where, "captured", "now     ")
                     : file + ": same" + cut + '\n');
  return !where;
}

// Compares the replays of two builds. The line is that of the last event that the capture and both builds share.
bool compare_builds(const std::string &file, const yfw::plugin &old_build, const yfw::plugin &new_build) {
  const yfw::capture recorded = yfw::capture::read(read_text(file), file);
  const std::vector<yfw::plugin_event> before = replay(recorded, old_build);
  const std::vector<yfw::plugin_event> now = replay(recorded, new_build);
  const auto where = first_difference(before, now);
  if (!where) {
    write_result(file + ": same\n");
    return true;
  }
  const auto from_capture = first_difference(recorded.events(), now);
  const auto line = from_capture ? from_capture->expected : std::nullopt;
  write_result(place_text(file, recorded.events(), line) + ": differs\n" + difference_text(*where, "old", "new"));
  return false;
}

void run(const replay_options &options) {
  if (options.old_build.empty() != options.new_build.empty()) {
    throw usage_error("--old and --new must be used together");
  }
  const bool is_of_builds = !options.old_build.empty();
  if (is_of_builds && !options.plugin.empty()) {
    throw usage_error("--plugin excludes --old and --new");
  }
  const auto load = [](const std::string &named) { return yfw::plugin::load_without_manifest(plugin_library(named)); };
  const std::vector<std::string> files = captures_of(options.from);
  const yfw::plugin first = load(is_of_builds ? options.old_build : options.plugin);
  const std::optional<yfw::plugin> second = is_of_builds ? std::optional(load(options.new_build)) : std::nullopt;
  size_t differing = 0;
  progress shown("replaying captures");
  for (size_t i = 0; i < files.size(); ++i) {
    shown.hide();
    const bool is_same = second ? compare_builds(files[i], first, *second) : compare_with_capture(files[i], first);
    differing += is_same ? 0 : 1;
    shown(i + 1, files.size());
  }
  if (differing != 0) {
    throw failure_reported();
  }
}

}  // namespace

void add_replay(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("replay", "Replay captures and print the first difference.");
  command.footer(replay_help);
  const auto options = std::make_shared<replay_options>();
  command.add_option("DIR", options->from, "directories of captures, or single captures")
      ->required()
      ->check(empty_name_error);
  command.add_option("--plugin", options->plugin, "the plug-in instead of the built or installed one")
      ->type_name("PATH")
      ->check(empty_name_error);
  command.add_option("--old", options->old_build, "a build of the plug-in to compare")
      ->type_name("PATH")
      ->check(empty_name_error);
  command.add_option("--new", options->new_build, "the build to compare it with")
      ->type_name("PATH")
      ->check(empty_name_error);
  command.callback([options] { run(*options); });
}

}  // namespace ymap
