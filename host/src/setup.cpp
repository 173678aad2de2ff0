#include "setup.hpp"

#include "measurement.hpp"

#include <filesystem>
#include <functional>
#include <iostream>
#include <system_error>

#include "commands.hpp"
#include "terminal.hpp"
#include "yfw/error.hpp"

namespace ymap {
namespace {

namespace fs = std::filesystem;

// The directory that holds bin/, lib/ and share/: of the installation or of the build.
fs::path prefix() {
  std::error_code failure;
  const fs::path program = fs::read_symlink("/proc/self/exe", failure);
  if (failure) {
    throw yfw::error("cannot find the directory of this program without /proc; use --plugin and --yang");
  }
  return program.parent_path().parent_path();
}

std::vector<fs::path> yang_directories(const setup_options &options) {
  if (options.yang.empty()) {
    return {prefix() / "share" / "ymap" / "yang"};
  }
  return {options.yang.begin(), options.yang.end()};
}

}  // namespace

fs::path plugin_library(const std::string &named) {
  if (!named.empty()) {
    return named;
  }
  for (const char *directory : {YMAP_LIBDIR, "lib"}) {
    if (fs::path library = prefix() / directory / "ymap" / YMAP_DEFAULT_PLUGIN; fs::exists(library)) {
      return library;
    }
  }
  throw yfw::error("the plug-in '" YMAP_DEFAULT_PLUGIN
                   "' is not installed beside this program; name a plug-in with --plugin");
}

void add_setup(CLI::App &command, setup_options &options) {
  constexpr const char *group = "Plug-in, modules and trace";
  command.add_option("--plugin", options.plugin, "the plug-in instead of the built or installed one")
      ->type_name("PATH")
      ->check(empty_name_error)
      ->group(group);
  command.add_option("--yang", options.yang, "a directory of YANG modules instead of the shipped ones; repeatable")
      ->type_name("DIR")
      ->check(empty_name_error)
      ->allow_extra_args(false)
      ->group(group);
  command.add_flag("--trace", options.trace, "print the plug-in's short-form trace lines to standard error")
      ->group(group);
  command
      .add_flag("--trace-long", options.trace_long,
                "print the long-form lines, with function and line, when the command ends")
      ->group(group);
}

setup::setup(const setup_options &options)
    : trace_(options.trace ? &std::cerr : nullptr, options.trace_long),
      schema_(yfw::schema::load(yang_directories(options))),
      plugin_(yfw::plugin::load(plugin_library(options.plugin))) {
  check_manifest(plugin_.description(), schema_, yfw::manifest::beside(plugin_.library()));
}

setup::~setup() {
  trace_.print_ring(std::cerr);
}

yfw::coverage measure(setup &with) {
  progress shown("probing leaves");
  return measure_coverage(with.schema(), with.plugin(), with.trace(), std::ref(shown));
}

}  // namespace ymap
