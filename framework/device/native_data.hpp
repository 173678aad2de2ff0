// Native data as a tree, read from a document and written again.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "yfw/data_tree.hpp"
#include "yfw/document.hpp"
#include "yfw/native_operation.hpp"
#include "yfw/writer.hpp"

namespace yfw {

class native_data {
 public:
  // See `memory_device`.
  explicit native_data(const document &source);
  explicit native_data(const schema &modules) : tree_(modules), format_(data_format::json) {}

  // What the reads among the operations name; see `native_device::read`.
  data_tree select(std::span<const native_operation> operations) const;

  // See `memory_device::text`.
  std::string text() const;

  data_tree &tree() {
    return tree_;
  }
  const data_tree &tree() const {
    return tree_;
  }
  const schema &modules() const {
    return tree_.modules();
  }
  const std::string &file() const {
    return file_;
  }

 private:
  std::span<const yfw_node_t> open_envelopes(const document &source);
  void load_level(const document &source, std::span<const yfw_node_t> level, data_node *parent);
  void load(const document &source, const yfw_node_t &from, data_node *parent);
  data_node &added(const document &source, const yfw_node_t &from, data_node *parent);
  std::string loaded_value(const document &source, const yfw_node_t &from);
  void set_unwritable(place where, const std::string &why);

  data_tree tree_;
  std::string file_;
  data_format format_;
  std::vector<wrapper> envelopes_;
  place unwritable_;
  std::string why_unwritable_;
};

// Whether the step has all keys of its list.
bool has_all_keys(const path_step &step);

}  // namespace yfw
