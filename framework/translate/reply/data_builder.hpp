// The output of native data: each emitted path becomes a leaf of the client model's tree.
#pragma once

#include <deque>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "yfw/data_tree.hpp"
#include "yfw/internal/context.hpp"
#include "yfw/internal/schema_steps.hpp"

namespace yfw {

class data_builder : public output_sink {
 public:
  // Adds to `tree`. With names in `wanted`, only list entries with one of them as key are entered. Both must outlive
  // it. `checks_values`: see `reply_options`.
  data_builder(data_tree &tree, const std::vector<std::string> &wanted, bool checks_values)
      : tree_(tree), wanted_(wanted), checks_values_(checks_values), paths_(tree.modules()) {}

  uint32_t add_path(context &ctx, std::string_view path, const char *ns, const char *value, yfw_node_t *source,
                    yfw_node_t **created, uint32_t flag) override;
  uint32_t enter_list(context &ctx, yfw_node_t **current_list, std::string_view path, const char *key_value,
                      const char *key_name) override;

  // The wanted names that were entered.
  const std::set<std::string> &entered_names() const {
    return entered_names_;
  }

 private:
  // An entry as the plug-in knows it: by the address of a node.
  struct entered {
    yfw_node_t node;
    data_node *data;
  };
  void set_value(context &ctx, data_node &leaf, std::string_view value);
  data_node *enclosing(const context &ctx, const lysc_node *list) const;
  static const lysc_node *innermost_list(const schema_steps &steps, size_t count);

  data_tree &tree_;
  const std::vector<std::string> &wanted_;
  const bool checks_values_;
  path_table paths_;
  std::set<std::string> entered_names_;
  std::deque<entered> entered_;
  std::unordered_map<const data_node *, entered *> known_;
};

}  // namespace yfw
