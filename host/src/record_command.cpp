#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "command_line.hpp"
#include "commands.hpp"
#include "yfw/capture.hpp"

namespace ymap {
namespace {

constexpr const char *about_record =
    "Runs another command and writes a capture for each call of the plug-in: what it was\n"
    "handed, every framework call that it made with its answer, what it changed, and its\n"
    "status. Captures are text to read, to keep beside a bug report, and to replay.\n\n"
    "Examples:\n"
    "  ymap record captures -- request examples/set-speed.xml\n"
    "  ymap record --anonymise captures -- reply examples/reply.xml\n"
    "  ymap replay captures";

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
    throw usage_error("'" + word + "' is no command to record; 'request' is one, others are in 'ymap --help'");
  }
  const yfw::capture_session session(options.directory, options.is_anonymous);
  const int exit_code = run_recorded(options.command);
  std::cerr << "ymap: " << session.count() << (session.count() == 1 ? " capture in " : " captures in ")
            << options.directory << '\n';
  // The command has said why.
  if (exit_code == 1) {
    throw failure_reported();
  }
  if (exit_code != 0) {
    throw CLI::RuntimeError(exit_code);
  }
}

}  // namespace

void add_record(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("record", "Run a command and capture what the plug-in does.");
  command.footer(about_record);
  const auto options = std::make_shared<record_options>();
  command.add_option("DIR", options->directory, "where the captures go; made if missing")
      ->required()
      ->check(empty_name_fault);
  command.add_flag("--anonymise", options->is_anonymous,
                   "replace names of list entries, MAC and IP addresses, everywhere alike");
  command.add_option("COMMAND", options->command, "after '--': a command of ymap with its arguments")
      ->required()
      ->expected(1, -1);
  command.callback([options, &app] { run(app, *options); });
}

}  // namespace ymap
