// The output side: data trees that are built path by path and then written.
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

// A node of an output tree. Tag, namespace and value belong to the tree or its schema. Siblings with the same tag and
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
  data_node *last_entry = nullptr;  // of the group, in its first node only
};

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
  std::string &index_key(const data_node *parent, const node_name &name);

  const schema *schema_;
  data_node top_;
  std::deque<data_node> nodes_;
  size_t nodes_used_ = 0;
  std::vector<std::unique_ptr<char[]>> texts_;
  char *text_ = nullptr;
  size_t text_left_ = 0;
  std::unordered_map<std::string, data_node *> index_;
  std::string scratch_;
};

// The path with keys, as `path` of a `yfw_node_t` gives it.
std::string path(const data_node &node);

}  // namespace yfw
