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

constexpr const char *description =
    "ymap translates between a client model, such as OpenConfig, and the native models of a device,\n"
    "and measures and checks the mapping between them: a plug-in, which is a shared library with a\n"
    "manifest beside it.";

constexpr const char *examples =
    "Examples:\n"
    "  ymap get --device examples/device.xml /interfaces/interface/ethernet/config\n"
    "  ymap request --to paths examples/set-speed.xml\n"
    "  ymap coverage --missing\n\n"
    "Exit codes: 0 done, 1 input rejected or work failed, 2 wrong command line.";

// An option that had another name in version 0.2, which is still accepted.
struct former_option {
  std::string_view command;  // empty: any
  std::string_view former, name;
};

constexpr former_option former_options[] = {{"reply", "--interface", "--entry"},
                                            {"explain", "--op", "--operation"},
                                            {"roundtrip", "--allow", "--accepted"},
                                            {"deviations", "--leave-out", "--skip-breaking"},
                                            {"", "--ring", "--trace-long"}};

// The words of the command line with current names of options, after a warning for each former one. Words after "--"
// are those of another command line.
std::vector<std::string> with_current_names(std::vector<std::string> words) {
  const auto is_option = [](const std::string &word) { return word.starts_with('-'); };
  const auto command = std::ranges::find_if_not(words, is_option);
  const auto end = std::ranges::find(words, "--");
  const std::string command_name = command < end ? *command : "";
  for (auto word = words.begin(); word != end; ++word) {
    const std::string option = word->substr(0, word->find('='));
    const auto *found = std::ranges::find_if(former_options, [&](const former_option &each) {
      return each.former == option && (each.command.empty() || each.command == command_name);
    });
    if (found != std::end(former_options)) {
      std::cerr << "ymap: warning: '" << found->former << "' is deprecated, use '" << found->name << "'\n";
      word->replace(0, option.size(), found->name);
    }
  }
  return words;
}

// The name that begins with `word` or, if several or none do, the one that is most similar; "" when none is similar.
std::string_view similar_name(const std::vector<std::string_view> &names, std::string_view word) {
  if (word.size() <= 2) {
    return "";
  }
  const auto is_completion = [&](std::string_view name) { return name.starts_with(word); };
  const auto completion = std::ranges::find_if(names, is_completion);
  return std::ranges::count_if(names, is_completion) == 1 ? *completion : yfw::closest(names, word);
}

// The long names: any letter is similar to a one-letter name.
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

// The error for the first unknown word of a command, options first; "" when all are known. CLI11 itself reports missing
// words first, which often are missing because they are misspelt.
std::string unknown_word_error(const CLI::App &command) {
  const std::vector<std::string> unknown = command.remaining();
  if (unknown.empty()) {
    return "";
  }
  const auto is_option = [](const std::string &word) { return word.starts_with('-'); };
  const auto option = std::ranges::find_if(unknown, is_option);
  const bool has_option = option != unknown.end();
  const std::string word = has_option ? option->substr(0, option->find('=')) : unknown.front();
  const bool is_program = command.get_parent() == nullptr;
  const std::string name = is_program ? "'ymap'" : "'ymap " + command.get_name() + "'";
  if (!has_option && !is_program) {
    return "unexpected argument " + yfw::in_quotes(word) + " of " + name;
  }
  const std::vector<std::string> names = has_option ? option_names(command) : command_names(command);
  const std::string_view similar = similar_name({names.begin(), names.end()}, word);
  return "unknown " + std::string(has_option ? "option " : "command ") + yfw::in_quotes(word) +
         (has_option ? " of " + name : "") + (similar.empty() ? "" : "; did you mean '" + std::string(similar) + "'?");
}

// The error line for a wrong command line.
std::string failure_line(const CLI::App &app, const CLI::Error &failure) {
  std::string text = unknown_word_error(app);
  for (const CLI::App *command : app.get_subcommands()) {
    text = text.empty() ? unknown_word_error(*command) : text;
  }
  const auto is = [&](CLI::ExitCodes code) { return failure.get_exit_code() == static_cast<int>(code); };
  const bool is_about_words = is(CLI::ExitCodes::RequiredError) || is(CLI::ExitCodes::ExtrasError);
  const bool has_no_command = is(CLI::ExitCodes::RequiredError) && app.get_subcommands().empty();
  text = is_about_words && !text.empty() ? text : has_no_command ? "a command is required" : failure.what();
  return "ymap: " + text + (text.ends_with('?') ? "" : ";") + " see 'ymap --help' or 'ymap COMMAND --help'\n";
}

// Parses and runs the command, and prints help and version. Returns the exit code.
int parse(CLI::App &app, int argc, char **argv) {
  try {
    std::vector<std::string> words = with_current_names({argv + 1, argv + argc});
    std::ranges::reverse(words);  // as CLI11 expects them
    app.parse(words);
    return 0;
  } catch (const CLI::ParseError &result) {
    const bool is_done = app.exit(result, std::cout, std::cerr) == 0;
    if (is_done) {
      write_result("");
    }
    return is_done ? 0 : 2;
  }
}

}  // namespace

int run_command_line(int argc, char **argv) {
  CLI::App app(description, "ymap");
  app.footer(examples);
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
