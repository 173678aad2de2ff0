// Data trees: what translations build path by path, what devices hold, what is written.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "yfw/schema.hpp"

namespace yfw {

// A node of a tree. Tag, namespace and value belong to the tree or its schema. Siblings with the same tag and
// namespace (entries of one list, values of one leaf-list) form a group: `next` leads to the next group, and stands
// only in a group's first node; `next_entry` leads to the next node of the same group.
struct data_node {
  std::string_view tag;
  std::string_view ns;
  std::optional<std::string_view> value;  // none: container, list entry, or a leaf that is asked for or deleted
  std::optional<uint32_t> operation;      // YFW_OPERATION_…
  const lysc_node *schema = nullptr;      // null when no module defines the node
  data_node *parent = nullptr;
  data_node *first_child = nullptr;
  data_node *last_child = nullptr;  // first node of the last group
  data_node *next = nullptr;
  data_node *next_entry = nullptr;
  data_node *previous_entry = nullptr;
  data_node *last_entry = nullptr;  // of the group, in its first node only
};

// All nodes of a level, whose first group is `first`; null for none.
template <typename node_t, typename visit_t>
void each_node(node_t *first, visit_t visit) {
  for (node_t *group = first; group != nullptr; group = group->next) {
    for (node_t *node = group; node != nullptr; node = node->next_entry) {
      visit(*node);
    }
  }
}

// The leaf of a list entry that is its key of that name, or null.
const data_node *key_leaf(const data_node &entry, std::string_view key);

using key_value = std::pair<std::string_view, std::string_view>;

// Nodes stay where they are until the tree is cleared or goes. Texts given are copied. Groups keep the order in which
// they were begun, entries that in which they were added. A null parent stands for the top.
class data_tree {
 public:
  explicit data_tree(const schema &modules) : schema_(&modules) {}

  // The child with that name, added when missing; of a group the first node.
  data_node &at(data_node *parent, std::string_view ns, std::string_view tag);

  // The list entry with those keys, added when missing with its key leaves in the order of the list's key statement.
  // Constant time.
  data_node &entry(data_node *parent, std::string_view ns, std::string_view tag, std::span<const key_value> keys);

  // The node of a leaf-list with that value, added when missing. Constant time.
  data_node &item(data_node *parent, std::string_view ns, std::string_view tag, std::string_view value);

  // Adds a node in any case: for an entry of a list without keys.
  data_node &add(data_node *parent, std::string_view ns, std::string_view tag);

  // As `at` and `add`, when the schema node is at hand.
  data_node &at(data_node *parent, const lysc_node *schema);
  data_node &add(data_node *parent, const lysc_node *schema);

  void set_value(data_node &node, std::string_view value);

  // Undoes a `set_value`, given the value before it.
  void restore_value(data_node &node, std::optional<std::string_view> before) noexcept;

  // The child of that schema node, of a group the first one, or null.
  const data_node *find(const data_node *parent, const lysc_node *schema) const;
  data_node *find(const data_node *parent, const lysc_node *schema);

  // The list entry that was added by `entry` with those keys, all keys of the list, or null. Constant time.
  const data_node *find_entry(const data_node *parent, const lysc_node *list, std::span<const key_value> keys) const;
  data_node *find_entry(const data_node *parent, const lysc_node *list, std::span<const key_value> keys);

  // The node that was added by `item` with that value, or null. Constant time.
  const data_node *find_item(const data_node *parent, const lysc_node *leaf_list, std::string_view value) const;
  data_node *find_item(const data_node *parent, const lysc_node *leaf_list, std::string_view value);

  // Takes a node with all that is below it out of the tree. It stays as it is until it is either put back with
  // `restore`, in the reverse order of removals and additions and with the result of this call, or let go with
  // `release`. Time is in proportion to the number of the groups beside it. `restore` throws nothing.
  using index_type = std::unordered_map<std::string, data_node *>;
  using index_handle = index_type::node_type;
  index_handle remove(data_node &node);
  void restore(data_node &node, index_handle handle) noexcept;
  void release(data_node &node);

  // Frees the memory of texts that were replaced or released, when they are more than half of all. Values and names
  // that are no schema's move.
  void compact();

  // The first group at the top, or null when the tree is empty.
  const data_node *first() const {
    return top_.first_child;
  }
  data_node *first() {
    return top_.first_child;
  }

  const schema &modules() const {
    return *schema_;
  }

  // Removes all nodes and keeps the memory for the next ones.
  void clear();

 private:
  struct node_name {
    std::string_view ns, tag;
    const lysc_node *schema;
  };
  node_name resolve(const data_node *parent, std::string_view ns, std::string_view tag) const;
  data_node *group(data_node *parent, const node_name &name);
  data_node &append(data_node *parent, const node_name &name, data_node *siblings);
  std::string_view keep(std::string_view text);
  std::string index_key(const data_node *parent, std::string_view ns, std::string_view tag) const;
  std::string entry_index_key(const data_node *parent, const node_name &name, std::span<const key_value> ordered) const;
  std::string index_key_of(const data_node &node) const;
  data_node *&link_to(data_node &above, const data_node *next);
  void forget(const data_node &node);
  void keep_again(data_node *level);

  const schema *schema_;
  data_node top_;
  std::deque<data_node> nodes_;
  size_t nodes_used_ = 0;
  std::vector<std::unique_ptr<char[]>> texts_;
  char *text_ = nullptr;
  size_t text_left_ = 0;
  size_t kept_bytes_ = 0;  // of all texts
  size_t dead_bytes_ = 0;  // of those that no node has any more
  std::vector<data_node *> free_;
  index_type index_;
};

// The path with keys, as `path` of a `yfw_node_t` gives it.
std::string path(const data_node &node);

}  // namespace yfw
