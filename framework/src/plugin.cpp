#include "yfw/plugin.hpp"

#include <dlfcn.h>

#include <utility>

#include "yfw/error.hpp"

namespace yfw {
namespace {

std::filesystem::path manifest_of(std::filesystem::path library) {
  return library.replace_extension(".manifest.json");
}

// The loader's own words carry the library's path in front and its search in between: keep what tells the cause.
std::string loader_message(const std::filesystem::path &library) {
  const char *text = dlerror();
  std::string message = text != nullptr ? text : "unknown cause";
  const std::string prefix = library.string() + ": ";
  if (message.starts_with(prefix)) {
    message.erase(0, prefix.size());
  }
  return message;
}

}  // namespace

plugin::plugin(std::filesystem::path library, void *handle, manifest description)
    : library_(std::move(library)), handle_(handle), manifest_(std::move(description)) {}

plugin::plugin(plugin &&other) noexcept
    : library_(std::move(other.library_)),
      handle_(std::exchange(other.handle_, nullptr)),
      manifest_(std::move(other.manifest_)) {}

plugin::~plugin() {
  if (handle_ != nullptr) {
    dlclose(handle_);
  }
}

plugin plugin::load_without_manifest(const std::filesystem::path &library) {
  // A path without a slash would be looked for in the loader's directories.
  const std::filesystem::path file = std::filesystem::absolute(library);
  void *handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    throw error(place{}, "cannot load '" + library.string() + "': " + loader_message(file));
  }
  return plugin(library, handle, {});
}

plugin plugin::load(const std::filesystem::path &library) {
  plugin result = load_without_manifest(library);
  result.manifest_ = manifest::read(manifest_of(library));
  for (const entry_point &entry : result.manifest_.entry_points) {
    (void)result.address(entry.function);
  }
  for (const default_function &defaults : result.manifest_.defaults) {
    (void)result.address(defaults.function);
  }
  return result;
}

void *plugin::address(const std::string &name) const {
  void *found = dlsym(handle_, name.c_str());
  if (found == nullptr) {
    throw error(place{}, "'" + library_.string() + "' has no function '" + name + "', which " +
                             (manifest_.entry_points.empty() ? "is called" : "its manifest names"));
  }
  return found;
}

}  // namespace yfw
