#include "yfw/plugin_check.hpp"

#include <cxxabi.h>
#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>

#include "plugin_check_names.hpp"
#include "yfw.h"
#include "yfw/error.hpp"
#include "yfw/internal/elf_file.hpp"

namespace yfw {
namespace {

constexpr finding_level ok = finding_level::ok;
constexpr finding_level warning = finding_level::warning;
constexpr finding_level error_level = finding_level::error;

// Whether this framework defines the name.
bool framework_defines(const std::string &name) {
  Dl_info own{};
  Dl_info other{};
  void *address = dlsym(RTLD_DEFAULT, name.c_str());
  return address != nullptr && dladdr(reinterpret_cast<void *>(&yfw_strdup), &own) != 0 &&
         dladdr(address, &other) != 0 && own.dli_fbase == other.dli_fbase;
}

bool is_of_cpp_runtime(const std::string &name) {
  static const std::set<std::string, std::less<>> libraries = {"libstdc++.so.6", "libc++.so.1", "libc++abi.so.1",
                                                               "libgcc_s.so.1"};
  return libraries.contains(name) || name.starts_with("GLIBCXX_") || name.starts_with("CXXABI_") ||
         name.starts_with("GCC_");
}

// A C++ name as its source has it.
std::string readable(const std::string &name) {
  int fault = 0;
  const std::unique_ptr<char, void (*)(void *)> text(abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &fault),
                                                     &std::free);
  return fault == 0 ? text.get() : name;
}

class plugin_check {
 public:
  explicit plugin_check(const std::filesystem::path &file)
      : path_(file), library_(elf_file::read(file)), names_(library_, report_) {
    report_.file = file.string();
    report_.machine = machine_name(library_.machine());
  }

  plugin_report run() {
    check_abi_version();
    check_needed();
    check_undefined();
    names_.run();
    check_exports();
    check_manifest();
    check_writable_data();
    check_start_code();
    return std::move(report_);
  }

 private:
  void add(finding_level level, const char *check, const std::string &message, const std::string &name = {}) {
    report_.findings.push_back({level, check, message, name});
  }

  // A plug-in may state the ABI version that it was compiled for in a section of its own.
  void check_abi_version() {
    report_.abi_version = library_.abi_version();
    if (!report_.abi_version) {
      add(ok, "abi", "the ABI version that it was built for is not stated");
      return;
    }
    const std::string own = std::to_string(YFW_ABI_VERSION);
    const bool is_own = report_.abi_version == own;
    add(is_own ? ok : error_level, "abi",
        is_own ? "built for ABI version '" + own + "'"
               : "built for ABI version " + in_quotes(*report_.abi_version) + ", expected '" + own + "'");
  }

  void check_needed() {
    for (const std::string &name : library_.needed()) {
      if (name != "libc.so.6" && !name.starts_with("ld-linux")) {
        is_alone_ = false;
        add(warning, "needs", is_of_cpp_runtime(name) ? "requires the C++ runtime" : "requires another library", name);
      }
    }
    if (is_alone_) {
      add(ok, "needs", "only the C library");
    }
  }

  void check_undefined() {
    for (const elf_symbol &symbol : library_.dynamic_symbols()) {
      if (!symbol.is_defined) {
        check_undefined(symbol);
      }
    }
    if (report_.elsewhere.empty()) {
      add(ok, "undefined",
          std::to_string(report_.framework.size()) + " names of the framework; the others are of the C library");
    }
  }

  void check_undefined(const elf_symbol &symbol) {
    if (symbol.version.starts_with("GLIBC_")) {
      report_.c_library.push_back(symbol.name);
    } else if (symbol.version.empty() && framework_defines(symbol.name)) {
      report_.framework.push_back(symbol.name);
    } else if (!symbol.is_weak) {  // a weak one may stay undefined
      report_.elsewhere.push_back(symbol.name);
      add_undefined(symbol);
    }
  }

  void add_undefined(const elf_symbol &symbol) {
    const std::string &name = symbol.name;
    if (is_of_cpp_runtime(symbol.version) || name.starts_with("_ZS") || name.starts_with("__cxa_")) {
      add(warning, "undefined", "belongs to the C++ runtime", name);
    } else if (!symbol.version.empty()) {
      add(warning, "undefined", "belongs to another library, version " + symbol.version, name);
    } else if (!is_alone_) {
      add(warning, "undefined", "expected in the other libraries that it requires", name);
    } else {
      add(error_level, "undefined", "not defined by the framework or the C library", name);
    }
  }

  void check_exports() {
    if (report_.models.empty()) {
      add(error_level, "names", "no function of a mapping is exported, expected ymap_ox_… or ymap_xo_…");
    }
    for (const std::string &name : report_.helpers) {
      if (name.starts_with("ymap_") || name.starts_with("__ymap_")) {
        unknown_names_.insert(name);
      }
    }
    const bool has_unreachable =
        std::ranges::any_of(report_.models, [](const auto &m) { return !m.unreachable.empty(); });
    size_t count = 0;
    for (const checked_model &model : report_.models) {
      count += model.overrides.size() + model.custom.size();
    }
    if (!report_.models.empty() && !has_unreachable) {
      add(ok, "overrides", "all " + std::to_string(count) + " custom functions are called");
    }
  }

  void check_manifest() {
    const std::filesystem::path file = manifest::beside(path_);
    if (!std::filesystem::exists(file)) {
      add(warning, "manifest",
          in_quotes(file.filename().string()) + " is missing beside it: a framework cannot call it");
      warn_of_unknown_names();
      return;
    }
    try {
      check_functions(manifest::read(file));
    } catch (const error &fault) {
      add(error_level, "manifest", fault.what());
    }
    warn_of_unknown_names();
  }

  void check_functions(const manifest &description) {
    std::set<std::string> called;
    for (const entry_point &entry : description.entry_points) {
      called.insert(entry.function);
    }
    for (const default_function &defaults : description.defaults) {
      called.insert(defaults.function);
    }
    bool is_whole = true;
    for (const std::string &name : called) {
      unknown_names_.erase(name);
      if (!names_.exports(name)) {
        is_whole = false;
        add(error_level, "manifest", "named, but not exported by the library", name);
      }
    }
    for (const checked_model &model : report_.models) {
      for (const std::string &name : model.entry_points) {
        if (!called.contains(name)) {
          is_whole = false;
          add(warning, "manifest", "entry point that the manifest does not name; never called", name);
        }
      }
    }
    if (is_whole) {
      add(ok, "manifest", "all " + std::to_string(called.size()) + " named functions are exported");
    }
  }

  void warn_of_unknown_names() {
    for (const std::string &name : unknown_names_) {
      add(warning, "names", "outside the naming scheme, and not named by the manifest", name);
    }
  }

  // A plug-in keeps no data between calls except the filter slots of its trace points.
  void check_writable_data() {
    std::set<size_t> writable;
    uint64_t bytes = 0;
    for (size_t i = 0; i < library_.sections().size(); ++i) {
      const elf_section &section = library_.sections()[i];
      const bool is_data = section.name.starts_with(".data") || section.name.starts_with(".bss") ||
                           section.name.starts_with(".tdata") || section.name.starts_with(".tbss");
      if (is_data && !section.name.starts_with(".data.rel.ro") && (section.flags & SHF_WRITE) != 0) {
        writable.insert(i);
        bytes += section.size;
      }
    }
    const auto symbols = library_.all_symbols();
    if (!symbols) {
      add(bytes == 0 ? ok : warning, "data",
          std::to_string(bytes) + " writable bytes; the library is stripped, so their names are unknown");
      return;
    }
    check_objects(*symbols, writable);
  }

  void check_objects(const std::vector<elf_symbol> &symbols, const std::set<size_t> &writable) {
    bool is_clean = true;
    for (const elf_symbol &symbol : symbols) {
      if (!symbol.is_defined || symbol.is_function || symbol.size == 0 || !writable.contains(symbol.section)) {
        continue;
      }
      const bool is_slot = symbol.name.find("ymap_slot_") != std::string::npos;
      if (!is_slot && !symbol.name.starts_with("completed.")) {  // of the compiler's start files
        is_clean = false;
        add(warning, "data", std::to_string(symbol.size) + " writable bytes that outlive a call",
            readable(symbol.name));
      }
    }
    if (is_clean) {
      add(ok, "data", "only the filter slots of trace points are writable");
    }
  }

  // The compiler's start files add one function, frame_dummy, which does nothing.
  void check_start_code() {
    const auto symbols = library_.all_symbols();
    const bool has_dummy =
        symbols && std::ranges::any_of(*symbols, [](const elf_symbol &symbol) { return symbol.name == "frame_dummy"; });
    for (const char *name : {".init_array", ".preinit_array", ".ctors"}) {
      if (const elf_section *section = library_.section(name);
          section != nullptr && section->size > (has_dummy ? sizeof(uint64_t) : 0)) {
        add(warning, "start", "runs code when it is loaded", name);
      }
    }
  }

  std::filesystem::path path_;
  plugin_report report_;
  elf_file library_;
  name_check names_;
  std::set<std::string> unknown_names_;  // names that begin like mapping functions, but are outside the scheme
  bool is_alone_ = true;                 // requires only the C library
};

}  // namespace

unsigned plugin_report::count(finding_level level) const {
  return static_cast<unsigned>(std::ranges::count(findings, level, &finding::level));
}

plugin_report check_plugin(const std::filesystem::path &library) {
  return plugin_check(library).run();
}

}  // namespace yfw
