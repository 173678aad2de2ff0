// The checks of a plug-in's exported names.
#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "mapping_name.hpp"
#include "yfw/internal/elf_file.hpp"
#include "yfw/plugin_check.hpp"

namespace yfw {

class name_check {
 public:
  name_check(const elf_file &library, plugin_report &report);

  // Sorts the exported names into models and helpers, and adds findings.
  void run();

  bool exports(const std::string &name) const {
    return symbols_.contains(name);
  }

 private:
  struct exported {
    elf_symbol symbol;
    std::optional<mapping_name> parts;
  };
  using named = std::pair<const std::string, exported>;

  void check_symbol(const named &each);
  void check_body(const named &each);
  void check_weak(const named &each, checked_model &model);
  void check_custom(const named &each, checked_model &model);
  void warn_of_unreachable(const named &each, checked_model &model);
  std::string likely_override_of(const mapping_name &parts) const;
  bool is_called(const named &each) const;
  checked_model &model_of(const mapping_name &parts);
  void add(finding_level level, const char *check, const std::string &message, const std::string &name);

  plugin_report &report_;
  std::map<std::string, exported> symbols_;
  std::multimap<uint64_t, uint64_t> references_;
  std::set<std::string> mentioned_;  // in its relocations or its own list of called names
};

}  // namespace yfw
