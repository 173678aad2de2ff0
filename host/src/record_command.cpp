#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "command_line.hpp"
#include "commands.hpp"
#include "yfw/capture.hpp"

namespace ymap {
namespace {

constexpr const char *record_help =
    "Examples:\n"
    "  ymap record captures -- request examples/set-speed.xml\n"
    "  ymap record --anonymise captures -- reply examples/reply.xml\n"
    "  ymap replay captures\n\n"
    "Runs another command and writes a capture for each call of the plug-in: its arguments, its\n"
    "calls of the framework with their results, its changes, and its status. A capture is a text\n"
    "file that can be read, attached to a bug report, and replayed.";

struct record_options {
  std::string directory;
  bool is_anonymous = false;
  std::vector<std::string> command;
};

int run_recorded(std::vector<std::string> words) {
  words.insert(words.begin(), "ymap");
  std::vector<char *> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string &word : words) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);
  return run_command_line(static_cast<int>(words.size()), arguments.data());
}

void run(const CLI::App &app, const record_options &options) {
  const std::string &word = options.command.front();
  const auto found = app.get_subcommands([&](const CLI::App *command) { return command->get_name() == word; });
  if (word == "record" || word == "replay" || found.empty()) {
    throw usage_error("cannot record command '" + word + "', expected one like 'request' (see 'ymap --help')");
  }
  const yfw::capture_session session(options.directory, options.is_anonymous);
  const int exit_code = run_recorded(options.command);
  std::cerr << "ymap: " << session.count() << (session.count() == 1 ? " capture in " : " captures in ")
            << options.directory << '\n';
  // The command has reported the error.
  if (exit_code == 1) {
    throw failure_reported();
  }
  if (exit_code != 0) {
    throw CLI::RuntimeError(exit_code);
  }
}

}  // namespace

void add_record(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("record", "Run a command and capture each call of the plug-in.");
  command.footer(record_help);
  const auto options = std::make_shared<record_options>();
  command.add_option("DIR", options->directory, "the directory for the captures; created if it does not exist")
      ->required()
      ->check(empty_name_error);
  command.add_flag("--anonymise", options->is_anonymous,
                   "replace keys of list entries, MAC and IP addresses, the same way in all captures");
  command.add_option("COMMAND", options->command, "a command of ymap with its arguments, after '--'")
      ->required()
      ->expected(1, -1);
  command.callback([options, &app] { run(app, *options); });
}

}  // namespace ymap
