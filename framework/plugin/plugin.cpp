#include "yfw/plugin.hpp"

#include <dlfcn.h>

#include <utility>

#include "yfw.h"
#include "yfw/error.hpp"
#include "yfw/internal/elf_file.hpp"

namespace yfw {
namespace {

#if defined(__aarch64__)
constexpr uint16_t own_machine = EM_AARCH64;
#else
constexpr uint16_t own_machine = EM_X86_64;
#endif

// Throws for a library of another machine or ABI version before the loader runs anything in it.
void check_library(const std::filesystem::path &library) {
  const elf_file content = elf_file::read(library);
  const auto fail = [&](const std::string &text) { throw error(place{library.string()}, text); };
  if (content.machine() != own_machine) {
    fail("is built for " + std::string(machine_name(content.machine())) + ", expected " +
         std::string(machine_name(own_machine)));
  }
  const std::string own = std::to_string(YFW_ABI_VERSION);
  if (const std::string version = content.abi_version().value_or(own); version != own) {
    fail("is built for record layout version " + in_quotes(version) + ", expected '" + own + "'");
  }
}

// The loader's message without the library's path in front of it.
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
  check_library(library);
  return open(library, {});
}

plugin plugin::open(const std::filesystem::path &library, manifest description) {
  // A path without a slash would be looked for in the loader's directories.
  const std::filesystem::path file = std::filesystem::absolute(library);
  void *handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    throw error(place{}, "cannot load '" + library.string() + "': " + loader_message(file));
  }
  return plugin(library, handle, std::move(description));
}

plugin plugin::load(const std::filesystem::path &library) {
  check_library(library);
  plugin result = open(library, manifest::read(manifest::beside(library)));
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
