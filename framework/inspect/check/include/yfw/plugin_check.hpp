// Checks of a plug-in's shared library without loading it.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "yfw/manifest.hpp"

namespace yfw {

enum class finding_level { ok, warning, error };

struct finding {
  finding_level level;
  std::string check;  // a stable name: "overrides", "undefined"
  std::string message;
  std::string name;  // the exported or undefined name that the message is about, or ""
};

// The functions of one model: of one YANG module in one direction.
struct checked_model {
  direction dir;
  std::string plugin;  // as its names have it: "sky"
  std::string module;  // without hyphens: "skyweather"
  std::vector<std::string> entry_points;
  std::vector<std::string> overrides;    // custom functions that replace a generated one
  std::vector<std::string> custom;       // custom functions that generated ones call
  std::vector<std::string> unreachable;  // custom functions that nothing in the library calls
  unsigned generated = 0;                // nodes and hooks with a generated function
  unsigned unmapped = 0;                 // nodes without a function
};

struct plugin_report {
  std::string file;
  std::string machine;                     // "x86-64"
  std::optional<std::string> abi_version;  // that it was built for; none when it is not stated
  std::vector<checked_model> models;
  std::vector<std::string> helpers;    // exported names outside the naming scheme
  std::vector<std::string> framework;  // undefined names that the framework defines,
  std::vector<std::string> c_library;  // that the C library defines,
  std::vector<std::string> elsewhere;  // and that neither defines
  std::vector<finding> findings;

  unsigned count(finding_level level) const;
};

// Checks a plug-in's library. Throws `error` for a file that is not a shared library.
plugin_report check_plugin(const std::filesystem::path &library);

}  // namespace yfw
