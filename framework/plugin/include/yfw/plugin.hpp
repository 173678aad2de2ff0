// A mapping plug-in, loaded from its shared library, with its manifest.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "yfw.h"
#include "yfw/manifest.hpp"

namespace yfw {

// The forms of the functions that a framework calls.
using entry_function = uint32_t (*)(yfw_ctx_t *, yfw_node_t *, yfw_node_t *);
using report_defaults_function = uint32_t (*)(void *, yfw_ctx_t *, void *, yfw_node_t *);
using create_defaults_function = uint32_t (*)(void *, yfw_ctx_t *, yfw_node_t *, yfw_node_t *);

class plugin {
 public:
  // Loads the library and the manifest beside it, `NAME.manifest.json` for `NAME.so`. Every function that the manifest
  // names must be there. Throws `error` otherwise, and when the library needs a name that nothing defines. A
  // library that is truncated, for another machine or built for another ABI version is rejected before anything in it
  // runs.
  static plugin load(const std::filesystem::path &library);

  // Loads the library alone in the same way, for callers that know the names of its functions. The description is
  // empty.
  static plugin load_without_manifest(const std::filesystem::path &library);

  plugin(plugin &&other) noexcept;
  plugin &operator=(plugin &&) = delete;
  ~plugin();

  const manifest &description() const {
    return manifest_;
  }

  const std::filesystem::path &library() const {
    return library_;
  }

  // The function of that name. Throws `error` when there is none. The caller knows its form from where the manifest
  // names it.
  template <typename function_t>
  function_t function(const std::string &name) const {
    return reinterpret_cast<function_t>(address(name));
  }

 private:
  plugin(std::filesystem::path library, void *handle, manifest description);
  static plugin open(const std::filesystem::path &library, manifest description);
  void *address(const std::string &name) const;

  std::filesystem::path library_;
  void *handle_;
  manifest manifest_;
};

}  // namespace yfw
