// The modules, the plug-in and the trace of a command.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "yfw/plugin.hpp"
#include "yfw/schema.hpp"
#include "yfw/trace.hpp"

namespace ymap {

// The options that select them.
struct setup_options {
  std::string plugin;             // empty: the default one
  std::vector<std::string> yang;  // empty: the shipped modules
  bool trace = false;
  bool trace_long = false;
};

// Adds them to a command. `options` must live until the command has run.
void add_setup(CLI::App &command, setup_options &options);

// The plug-in's library: `named`, or, when that is empty, the one beside this program. Throws `yfw::error` when there
// is none.
std::filesystem::path plugin_library(const std::string &named);

class setup {
 public:
  // Loads the modules and the plug-in of the options, by default those beside this program, and checks the plug-in's
  // manifest against the modules. Throws `yfw::error`.
  explicit setup(const setup_options &options);
  // Prints the long-form trace lines to standard error.
  ~setup();
  setup(const setup &) = delete;
  setup &operator=(const setup &) = delete;

  const yfw::schema &schema() const {
    return schema_;
  }
  const yfw::plugin &plugin() const {
    return plugin_;
  }
  yfw::trace_log &trace() {
    return trace_;
  }

 private:
  yfw::trace_log trace_;
  yfw::schema schema_;
  yfw::plugin plugin_;
};
}  // namespace ymap
