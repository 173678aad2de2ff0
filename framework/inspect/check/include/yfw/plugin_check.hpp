// What can be said of a plug-in's shared library without loading it.
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
  std::string about;  // a short word that stays the same: "overrides", "undefined"
  std::string text;
  std::string name;  // the exported or wanted name that it is about, or ""
};

// The functions of one model: of one YANG module in one direction.
struct checked_model {
  direction dir;
  std::string plugin;  // as its names have it: "oc_ethernet"
  std::string module;  // without hyphens: "openconfigifethernet"
  std::vector<std::string> entry_points;
  std::vector<std::string> overrides;  // by hand, in place of a generated body
  std::vector<std::string> by_hand;    // by hand, where the generator has none
  std::vector<std::string> uncalled;   // by hand, and nothing in the library calls them
  unsigned generated = 0;              // nodes and hooks that a generated body answers for
  unsigned unmapped = 0;               // nodes that nothing is done for
};

struct plugin_report {
  std::string file;
  std::string machine;                     // "x86-64"
  std::optional<std::string> abi_version;  // that it was built for, as far as it says
  std::vector<checked_model> models;
  std::vector<std::string> helpers;    // exported names outside of the naming scheme
  std::vector<std::string> framework;  // names that it wants of the framework,
  std::vector<std::string> c_library;  // of the C library,
  std::vector<std::string> elsewhere;  // and of nobody known
  std::vector<finding> findings;

  unsigned count(finding_level level) const;
};

// Throws `error` for a file that is no shared library.
plugin_report check_plugin(const std::filesystem::path &library);

}  // namespace yfw
