// What a framework must know to call a plug-in and cannot ask of the YANG modules: the data file beside the plug-in.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace yfw {

class schema;

// `ox` takes a tree of the client model (a request), `xo` a tree of the native model.
enum class direction { ox, xo };

// Serves the nodes of `module` that stand below the schema node `at` ("/": at the top).
struct entry_point {
  direction dir;
  std::string module;
  std::string at;
  std::string function;
};

// A native list whose entries stand for entries of a list of the client model, by one key each.
struct list_pair {
  std::string high;
  std::string high_key;
  std::string low;
  std::string low_key;
};

// Called for each entry of list `at`: `xo` reports defaults of a native entry, `ox` writes those of a created entry.
struct default_function {
  direction dir;
  std::string at;
  std::string function;
};

struct manifest {
  std::vector<entry_point> entry_points;
  std::vector<list_pair> lists;
  std::vector<default_function> defaults;

  // Where the manifest of a library is: `NAME.manifest.json` for `NAME.so`.
  static std::filesystem::path beside(std::filesystem::path library);

  // Reads a manifest. Throws `error` for a file that cannot be read, is not JSON, lacks a member, has an unknown one or
  // was written for another version of the ABI.
  static manifest read(const std::filesystem::path &file);

  // The same of a text; `file` is for messages.
  static manifest parse(const std::string &text, const std::filesystem::path &file);

  // The pair with that native list, or null.
  const list_pair *pair_of_low(std::string_view path) const;
};

// Throws `error` when a module, path or key of the manifest is not in the modules: each entry point serves nodes of its
// module, lists and defaults are at lists, and keys are of those. `file` is for messages.
void check_manifest(const manifest &description, const schema &modules, const std::filesystem::path &file);

}  // namespace yfw
