// The commands of ymap. Each adds itself to the command line, with its options and help; when it is the one asked for,
// it runs and throws `yfw::error` when the input is refused or the work fails, `usage_error` when the command line does
// not fit the input.
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

// Thrown when the work failed and the result that was printed says so.
class failure_reported : public std::exception {};

// The check of options and arguments that name a file, a directory or something in the data, as CLI11 wants it. An
// empty name, as an unset variable of a script leaves it, would be taken for an option that is not there.
inline std::string empty_name_fault(const std::string &text) {
  return text.empty() ? "its value is empty, and names nothing" : "";
}

// An option whose value is one of a few words.
template <typename value_t>
void add_choice(CLI::App &command, const std::string &name, const std::string &help,
                const std::map<std::string, value_t> &words, std::function<void(value_t)> choose) {
  command
      .add_option_function<std::string>(
          name, [words, choose](const std::string &word) { choose(words.at(word)); }, help)
      ->check(CLI::IsMember(words));
}

// --format, as reports for readers and programs have it. `as_json` must live until the command has run.
inline void add_format(CLI::App &command, bool &as_json) {
  add_choice<bool>(command, "--format", "for a reader (text, default) or for a program (json)",
                   {{"text", false}, {"json", true}}, [&as_json](bool chosen) { as_json = chosen; });
}

}  // namespace ymap
