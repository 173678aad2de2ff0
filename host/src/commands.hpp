// The commands of ymap. Each function adds a command with its options and help to the command line. The command throws
// `yfw::error` when the input is rejected or the work fails, `usage_error` when the command line is wrong for the
// input.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>

namespace ymap {

void add_request(CLI::App &app);
void add_reply(CLI::App &app);
void add_get(CLI::App &app);
void add_set(CLI::App &app);
void add_delete(CLI::App &app);
void add_edit(CLI::App &app);
void add_plan(CLI::App &app);
void add_explain(CLI::App &app);
void add_roundtrip(CLI::App &app);
void add_coverage(CLI::App &app);
void add_deviations(CLI::App &app);
void add_record(CLI::App &app);
void add_replay(CLI::App &app);
void add_check(CLI::App &app);

class usage_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Thrown when the work failed and the printed result says so.
class failure_reported : public std::exception {};

// A check as CLI11 expects it, of options and arguments that name a file, a directory or something in the data: the
// error of an empty name, which an unset variable of a script leaves and which would otherwise count as an absent
// option.
inline std::string empty_name_error(const std::string &text) {
  return text.empty() ? "invalid value '', expected a name" : "";
}

// Adds an option with a choice of words, and calls `choose` with the meaning of the one that is given.
template <typename value_t>
void add_choice(CLI::App &command, const std::string &name, const std::string &help,
                const std::map<std::string, value_t> &words, std::function<void(value_t)> choose) {
  std::string known, quoted;
  for (const auto &[word, meaning] : words) {
    known.append(known.empty() ? "" : ",").append(word);
    quoted.append(quoted.empty() ? "'" : ", '").append(word).append("'");
  }
  const auto error_of = [words, quoted](const std::string &word) {
    return words.contains(word) ? "" : "invalid value '" + word + "', expected " + quoted;
  };
  command
      .add_option_function<std::string>(
          name, [words, choose](const std::string &word) { choose(words.at(word)); }, help)
      ->type_name("{" + known + "}")
      ->check(error_of);
}

// Adds --format, of reports for people or programs. `as_json` must live until the command has run.
inline void add_format(CLI::App &command, bool &as_json) {
  add_choice<bool>(command, "--format", "text (default) or JSON", {{"text", false}, {"json", true}},
                   [&as_json](bool chosen) { as_json = chosen; });
}

}  // namespace ymap
