#include "command_line.hpp"

#include <algorithm>
#include <iostream>
#include <new>
#include <string_view>
#include <vector>

#include "commands.hpp"
#include "input.hpp"
#include "yfw.h"
#include "yfw/error.hpp"
#include "yfw/schema.hpp"

namespace ymap {
namespace {

constexpr const char *about =
    "ymap runs a YANG model mapping: it turns a client's OpenConfig request into what\n"
    "the device is asked to set, delete or read, and native data into OpenConfig data.\n"
    "A mapping is a plug-in, a shared library with a manifest beside it.";

constexpr const char *about_exit_codes = "Exit codes: 0 done, 1 input refused or work failed, 2 wrong command line.";

// The word of `names` that somebody meant who began or misspelt it; "" when none is near, or nothing to compare.
std::string_view meant(const std::vector<std::string_view> &names, std::string_view word) {
  if (word.size() <= 2) {
    return "";
  }
  const auto is_begun = [&](std::string_view name) { return name.starts_with(word); };
  const auto begun = std::ranges::find_if(names, is_begun);
  return std::ranges::count_if(names, is_begun) == 1 ? *begun : yfw::closest(names, word);
}

// The long ones: with a single letter, any other would be near.
std::vector<std::string> option_names(const CLI::App &command) {
  std::vector<std::string> names;
  for (const CLI::Option *option : command.get_options()) {
    for (const std::string &name : option->get_lnames()) {
      names.push_back("--" + name);
    }
  }
  return names;
}

std::vector<std::string> command_names(const CLI::App &app) {
  std::vector<std::string> names;
  for (const CLI::App *command : app.get_subcommands([](const CLI::App *) { return true; })) {
    names.push_back(command->get_name());
  }
  return names;
}

// What is wrong with the first word that a command has no use for, options first; "" when it has one for each. CLI11
// itself would tell first what is missing, which often is what was misspelt.
std::string strange_word(const CLI::App &command) {
  const std::vector<std::string> strange = command.remaining();
  if (strange.empty()) {
    return "";
  }
  const auto is_option = [](const std::string &word) { return word.starts_with('-'); };
  const auto option = std::ranges::find_if(strange, is_option);
  const bool has_option = option != strange.end();
  const std::string word = has_option ? option->substr(0, option->find('=')) : strange.front();
  const bool is_program = command.get_parent() == nullptr;
  const std::string name = is_program ? "'ymap'" : "'ymap " + command.get_name() + "'";
  if (!has_option && !is_program) {
    return yfw::in_quotes(word) + " is one argument too many for " + name;
  }
  const std::vector<std::string> names = has_option ? option_names(command) : command_names(command);
  const std::string_view near = meant({names.begin(), names.end()}, word);
  return yfw::in_quotes(word) + (has_option ? " is no option of " + name : " is no command") +
         (near.empty() ? "" : "; did you mean '" + std::string(near) + "'?");
}

// The error line of a command line that is wrong.
std::string failure_line(const CLI::App &app, const CLI::Error &failure) {
  std::string text = strange_word(app);
  for (const CLI::App *command : app.get_subcommands()) {
    text = text.empty() ? strange_word(*command) : text;
  }
  const auto is = [&](CLI::ExitCodes code) { return failure.get_exit_code() == static_cast<int>(code); };
  const bool is_of_words = is(CLI::ExitCodes::RequiredError) || is(CLI::ExitCodes::ExtrasError);
  text = is_of_words && !text.empty() ? text : failure.what();
  return "ymap: " + text + (text.ends_with('?') ? "" : ";") + " 'ymap --help' and 'ymap COMMAND --help' tell more\n";
}

// Parses and runs the command. Returns the exit code; help and version are printed here.
int parse(CLI::App &app, int argc, char **argv) {
  try {
    app.parse(argc, argv);
    return 0;
  } catch (const CLI::ParseError &result) {
    const bool is_good = app.exit(result, std::cout, std::cerr) == 0;
    if (is_good) {
      write_result("");
    }
    return is_good ? 0 : 2;
  }
}

}  // namespace

int run_command_line(int argc, char **argv) {
  CLI::App app(about, "ymap");
  app.footer(about_exit_codes);
  app.set_version_flag("--version", "ymap " YMAP_VERSION " (ABI " + std::to_string(YFW_ABI_VERSION) + ")");
  app.require_subcommand(1);
  app.get_formatter()->column_width(24);
  app.failure_message([&app](const CLI::App *, const CLI::Error &failure) { return failure_line(app, failure); });
  add_request(app);
  add_reply(app);
  add_get(app);
  add_set(app);
  add_delete(app);
  add_edit(app);
  add_plan(app);
  add_explain(app);
  add_roundtrip(app);
  add_coverage(app);
  add_deviations(app);
  add_record(app);
  add_replay(app);
  add_check(app);
  try {
    return parse(app, argc, argv);
  } catch (const usage_error &usage) {
    std::cerr << "ymap: " << usage.what() << '\n';
    return 2;
  } catch (const failure_reported &) {
    return 1;
  } catch (const std::bad_alloc &) {
    std::cerr << "ymap: out of memory\n";
    return 1;
  } catch (const std::exception &failure) {
    std::cerr << "ymap: " << failure.what() << '\n';
    return 1;
  }
}

}  // namespace ymap
