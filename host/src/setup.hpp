// What a command works with: the modules, the plug-in and the trace.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "yfw/coverage.hpp"
#include "yfw/plugin.hpp"
#include "yfw/schema.hpp"
#include "yfw/trace.hpp"

namespace ymap {

// The options that say it.
struct setup_options {
  std::string plugin;             // empty: the default one
  std::vector<std::string> yang;  // empty: the shipped modules
  bool trace = false;
  bool ring = false;
};

// Adds them to a command. `options` must live until the command has run.
void add_setup(CLI::App &command, setup_options &options);

// The plug-in's library: `named`, or, when that is empty, the one beside this program's own installation or build.
// Throws `yfw::error` when there is none.
std::filesystem::path plugin_library(const std::string &named);

class setup {
 public:
  // Loads what the options name, and checks that the plug-in's manifest goes with the modules. By default that is the
  // plug-in and the modules beside this program's own installation or build.
  explicit setup(const setup_options &options);
  // Prints the ring.
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

// Measures the mapping, and shows how far that has come.
yfw::coverage measure(setup &with);

}  // namespace ymap
