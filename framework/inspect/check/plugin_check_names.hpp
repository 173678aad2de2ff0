// The part of a plug-in's check that looks at its exported names.
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

  // Sorts the exported names into models and helpers, and tells what is odd about them.
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

  void look_at(const named &each);
  void look_at_body(const named &each);
  void look_at_weak(const named &each, checked_model &model);
  void look_at_by_hand(const named &each, checked_model &model);
  void warn_of_uncalled(const named &each, checked_model &model);
  std::string meant_by(const mapping_name &parts) const;
  bool is_called(const named &each) const;
  checked_model &model_of(const mapping_name &parts);
  void add(finding_level level, const char *about, const std::string &text, const std::string &name);

  plugin_report &report_;
  std::map<std::string, exported> symbols_;
  std::multimap<uint64_t, uint64_t> references_;
  std::set<std::string> mentioned_;  // by its relocations or its own list of called names
};

}  // namespace yfw
