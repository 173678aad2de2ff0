// Operations carried out on native data in place, so that they can be undone.
#pragma once

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "native_data.hpp"
#include "yfw/native_device.hpp"

namespace yfw {

// See `native_transaction`. Time is in proportion to the operations and what they delete, not to the data.
class native_edit {
 public:
  explicit native_edit(native_data &data) : data_(data), tree_(data.tree()) {}
  ~native_edit();
  native_edit(const native_edit &) = delete;
  native_edit &operator=(const native_edit &) = delete;

  void apply(std::span<const native_operation> operations);
  std::vector<device_change> effects() const;

  // Keeps what was done. Throws nothing.
  void keep() noexcept;

 private:
  // What undoes one step: a node that was added goes, one that was removed comes back, another one gets its old value.
  struct undo_step {
    enum class kind { added, removed, changed } what;
    data_node *node;
    data_tree::index_handle handle = {};
    std::optional<std::string_view> value = {};
  };

  void apply_one(const native_operation &operation);
  void require_editable(const native_operation &operation) const;
  void set(const native_operation &operation);
  void set_leaf(data_node *parent, const native_operation &operation);
  void remove_target(const native_operation &operation);
  data_node *find(data_node *parent, const path_step &step) const;
  data_node &found_or_added(data_node *parent, const native_operation &operation, size_t step);
  void remove_other_cases(data_node *parent, const native_operation &operation, size_t step);
  void remove(data_node &node);
  void remember_addition(data_node &node);
  void make_room();
  void compact() noexcept;
  void drop(data_node &node) noexcept;
  void release(data_node &node) noexcept;
  void note_removal(const data_node &node, const std::string &path);
  void note(const std::string &path, std::optional<std::string> before, std::optional<std::string> after);
  [[noreturn]] void fail(const native_operation &operation, const std::string &text, error_tag tag) const;

  native_data &data_;
  data_tree &tree_;
  size_t index_ = 0;  // of the operation in hand
  std::vector<undo_step> undo_;
  std::vector<device_change> journal_;
  std::unordered_map<std::string, size_t> journal_by_path_;
};

}  // namespace yfw
