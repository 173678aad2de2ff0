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

class path_table {
 public:
  explicit path_table(const schema &modules) : schema_(modules) {}

  // The steps of an absolute path of plain names whose last node is in `ns`; empty when the modules have no such path.
  // The result lives as long as the table.
  const schema_steps &steps(std::string_view path, std::string_view ns);

  // The same for a path of the manifest.
  const schema_steps &steps(std::string_view path, const manifest &description);

 private:
  // What is remembered by `key_`; at first the steps to what `node` finds.
  template <typename find_t>
  const schema_steps &known(const find_t &node);

  const schema &schema_;
  std::unordered_map<std::string, schema_steps> known_;
  std::string key_;
};

}  // namespace yfw
