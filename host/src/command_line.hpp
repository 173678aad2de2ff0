// The command line of ymap.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "yfw/client_request.hpp"
#include "yfw/reply.hpp"

namespace ymap {

enum class output_format { xml, json, paths };

// What all commands take.
struct common_options {
  std::string file;               // "-": standard input
  std::string plugin;             // empty: the default one
  std::vector<std::string> yang;  // empty: the shipped modules
  bool trace = false;
  bool ring = false;
};

struct request_command {
  common_options common;
  std::optional<yfw::client_operation> operation;
  output_format to = output_format::xml;
};

struct reply_command {
  common_options common;
  std::optional<output_format> to;  // none: as the input
  yfw::reply_options options;
};

// Each runs its command and throws `yfw::error` when the input is refused or the work fails, `usage_error` when the
// command line does not fit the input.
void run(const request_command &command);
void run(const reply_command &command);

class usage_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Parses and runs. Returns the exit code: 0 done, 1 input refused or work failed, 2 wrong command line.
int run_command_line(int argc, char **argv);

}  // namespace ymap
