#include "yfw/data_tree.hpp"

#include <algorithm>
#include <cstring>

#include "yfw/instance_path.hpp"

namespace yfw {

data_tree::node_name data_tree::resolve(const data_node *parent, std::string_view ns, std::string_view tag) const {
  const bool is_known = parent == nullptr || parent->schema != nullptr;
  const lysc_node *schema = is_known ? schema_->child(parent == nullptr ? nullptr : parent->schema, ns, tag) : nullptr;
  return schema == nullptr ? node_name{ns, tag, nullptr} : node_name{yfw::ns(schema), yfw::name(schema), schema};
}

// The group with that name, or null. The number of groups is bounded by the schema, so that a walk will do.
data_node *data_tree::group(data_node *parent, const node_name &name) {
  data_node *node = (parent == nullptr ? top_ : *parent).first_child;
  while (node != nullptr && (node->schema != name.schema || node->tag != name.tag || node->ns != name.ns)) {
    node = node->next;
  }
  return node;
}

// Adds a node to the group that `siblings` begins, or one that begins a group when it is null.
data_node &data_tree::append(data_node *parent, const node_name &name, data_node *siblings) {
  if (nodes_used_ == nodes_.size()) {
    nodes_.emplace_back();
  }
  data_node &node = nodes_[nodes_used_++];
  node = {};
  node.tag = name.schema != nullptr ? name.tag : keep(name.tag);
  node.ns = name.schema != nullptr ? name.ns : keep(name.ns);
  node.schema = name.schema;
  node.parent = parent;
  data_node &above = parent == nullptr ? top_ : *parent;
  if (siblings != nullptr) {
    (siblings->last_entry == nullptr ? siblings : siblings->last_entry)->next_entry = &node;
    siblings->last_entry = &node;
  } else {
    (above.last_child == nullptr ? above.first_child : above.last_child->next) = &node;
    above.last_child = &node;
  }
  return node;
}

data_node &data_tree::at(data_node *parent, std::string_view ns, std::string_view tag) {
  const node_name name = resolve(parent, ns, tag);
  data_node *found = group(parent, name);
  return found != nullptr ? *found : append(parent, name, nullptr);
}

data_node &data_tree::add(data_node *parent, std::string_view ns, std::string_view tag) {
  const node_name name = resolve(parent, ns, tag);
  return append(parent, name, group(parent, name));
}

data_node &data_tree::at(data_node *parent, const lysc_node *schema) {
  data_node *found = (parent == nullptr ? top_ : *parent).first_child;
  while (found != nullptr && found->schema != schema) {
    found = found->next;
  }
  return found != nullptr ? *found : append(parent, {yfw::ns(schema), yfw::name(schema), schema}, nullptr);
}

data_node &data_tree::add(data_node *parent, const lysc_node *schema) {
  const node_name name{yfw::ns(schema), yfw::name(schema), schema};
  return append(parent, name, group(parent, name));
}

static void add_part(std::string &key, std::string_view part) {
  const size_t size = part.size();
  key.append(reinterpret_cast<const char *>(&size), sizeof size);
  key += part;
}

// Begins the text under which an entry is found again: its parent and name, to be followed by its keys.
std::string &data_tree::index_key(const data_node *parent, const node_name &name) {
  scratch_ = std::to_string(reinterpret_cast<uintptr_t>(parent));
  add_part(scratch_, name.ns);
  add_part(scratch_, name.tag);
  return scratch_;
}

data_node &data_tree::entry(data_node *parent, std::string_view ns, std::string_view tag,
                            std::span<const key_value> keys) {
  const node_name name = resolve(parent, ns, tag);
  std::vector<key_value> ordered(keys.begin(), keys.end());
  const std::vector<std::string_view> order = yfw::keys(name.schema);
  std::ranges::stable_sort(ordered, {}, [&](const key_value &key) { return std::ranges::find(order, key.first); });
  std::string &key = index_key(parent, name);
  for (const auto &[key_name, value] : ordered) {
    add_part(key, key_name);
    add_part(key, value);
  }
  data_node *&found = index_[key];
  if (found == nullptr) {
    found = &append(parent, name, group(parent, name));
    for (const auto &[key_name, value] : ordered) {
      set_value(at(found, name.ns, key_name), value);
    }
  }
  return *found;
}

data_node &data_tree::item(data_node *parent, std::string_view ns, std::string_view tag, std::string_view value) {
  const node_name name = resolve(parent, ns, tag);
  std::string &key = index_key(parent, name);
  add_part(key, value);
  data_node *&found = index_[key];
  if (found == nullptr) {
    found = &append(parent, name, group(parent, name));
    set_value(*found, value);
  }
  return *found;
}

void data_tree::set_value(data_node &node, std::string_view value) {
  node.value = keep(value);
}

std::string_view data_tree::keep(std::string_view text) {
  if (text.empty()) {
    return "";
  }
  if (text.size() > text_left_) {
    constexpr size_t block_bytes = 65536;
    text_left_ = std::max(text.size(), block_bytes);
    texts_.push_back(std::make_unique_for_overwrite<char[]>(text_left_));
    text_ = texts_.back().get();
  }
  char *copy = text_;
  std::memcpy(copy, text.data(), text.size());
  text_ += text.size();
  text_left_ -= text.size();
  return {copy, text.size()};
}

void data_tree::clear() {
  top_ = {};
  nodes_used_ = 0;
  texts_.clear();
  text_left_ = 0;
  index_.clear();
}

static std::string step_text(const data_node &node) {
  std::string step = "/" + std::string(node.tag);
  for (const std::string_view key : keys(node.schema)) {
    for (const data_node *each = node.first_child; each != nullptr; each = each->next) {
      if (each->tag == key && each->value) {
        step += '[' + std::string(key) + '=' + path_literal(*each->value) + ']';
      }
    }
  }
  return step;
}

std::string path(const data_node &node) {
  return (node.parent == nullptr ? "" : path(*node.parent)) + step_text(node);
}

}  // namespace yfw
