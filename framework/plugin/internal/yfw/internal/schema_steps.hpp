// Schema paths that plug-ins emit, resolved once and remembered.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "yfw/manifest.hpp"
#include "yfw/schema.hpp"

namespace yfw {

// The nodes from the top down to the last one of a path.
using schema_steps = std::vector<const lysc_node *>;

// Entry for entry a plug-in emits the same paths in the same order: a path is first looked for behind the one before.
class path_table {
 public:
  explicit path_table(const schema &modules) : schema_(modules) {}

  // The steps of an absolute path of plain names whose last node is in `ns`; empty when the modules have no such path.
  // The result lives as long as the table.
  const schema_steps &steps(std::string_view path, std::string_view ns);

  // The same for a path of the manifest.
  const schema_steps &steps(std::string_view path, const manifest &description);

 private:
  struct known_path {
    std::string_view key;
    schema_steps steps;
    known_path *following = nullptr;  // what was asked for after it, the last time
  };

  // What is remembered for a path; at first the steps to what `node` finds.
  template <typename find_t>
  const schema_steps &known(std::string_view qualifier, std::string_view path, const find_t &node);

  const schema &schema_;
  std::unordered_map<std::string, known_path> known_;
  known_path *last_ = nullptr;
};

}  // namespace yfw
