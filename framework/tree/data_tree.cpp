#include "yfw/data_tree.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

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
  const std::string_view tag = name.schema != nullptr ? name.tag : keep(name.tag);
  const std::string_view ns = name.schema != nullptr ? name.ns : keep(name.ns);
  if (free_.empty() && nodes_used_ == nodes_.size()) {
    nodes_.emplace_back();
  }
  data_node &node = free_.empty() ? nodes_[nodes_used_++] : *free_.back();
  if (!free_.empty()) {
    free_.pop_back();
  }
  node = {};
  node.tag = tag;
  node.ns = ns;
  node.schema = name.schema;
  node.parent = parent;
  data_node &above = parent == nullptr ? top_ : *parent;
  if (siblings != nullptr) {
    node.previous_entry = siblings->last_entry == nullptr ? siblings : siblings->last_entry;
    node.previous_entry->next_entry = &node;
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
std::string data_tree::index_key(const data_node *parent, std::string_view ns, std::string_view tag) const {
  const auto address = reinterpret_cast<uintptr_t>(parent);
  std::string key(reinterpret_cast<const char *>(&address), sizeof address);
  add_part(key, ns);
  add_part(key, tag);
  return key;
}

// Keys in the order of the list's key statement.
static std::vector<key_value> ordered_keys(const lysc_node *list, std::span<const key_value> keys) {
  std::vector<key_value> ordered(keys.begin(), keys.end());
  if (ordered.size() > 1) {
    const std::vector<std::string_view> order = yfw::keys(list);
    std::ranges::stable_sort(ordered, {}, [&](const key_value &key) { return std::ranges::find(order, key.first); });
  }
  return ordered;
}

std::string data_tree::entry_index_key(const data_node *parent, const node_name &name,
                                       std::span<const key_value> ordered) const {
  std::string key = index_key(parent, name.ns, name.tag);
  for (const auto &[key_name, value] : ordered) {
    add_part(key, key_name);
    add_part(key, value);
  }
  return key;
}

data_node &data_tree::entry(data_node *parent, std::string_view ns, std::string_view tag,
                            std::span<const key_value> keys) {
  const node_name name = resolve(parent, ns, tag);
  const std::vector<key_value> ordered = ordered_keys(name.schema, keys);
  data_node *&found = index_[entry_index_key(parent, name, ordered)];
  if (found == nullptr) {
    found = &append(parent, name, group(parent, name));
    try {
      for (const auto &[key_name, value] : ordered) {
        set_value(at(found, name.ns, key_name), value);
      }
    } catch (...) {
      (void)remove(*std::exchange(found, nullptr));  // no entry without its keys
      throw;
    }
  }
  return *found;
}

data_node &data_tree::item(data_node *parent, std::string_view ns, std::string_view tag, std::string_view value) {
  const node_name name = resolve(parent, ns, tag);
  std::string key = index_key(parent, name.ns, name.tag);
  add_part(key, value);
  data_node *&found = index_[key];
  if (found == nullptr) {
    found = &append(parent, name, group(parent, name));
    set_value(*found, value);
  }
  return *found;
}

const data_node *data_tree::find(const data_node *parent, const lysc_node *schema) const {
  const data_node *node = (parent == nullptr ? top_ : *parent).first_child;
  while (node != nullptr && node->schema != schema) {
    node = node->next;
  }
  return node;
}

data_node *data_tree::find(const data_node *parent, const lysc_node *schema) {
  return const_cast<data_node *>(std::as_const(*this).find(parent, schema));
}

const data_node *data_tree::find_entry(const data_node *parent, const lysc_node *list,
                                       std::span<const key_value> keys) const {
  const node_name name{yfw::ns(list), yfw::name(list), list};
  const auto found = index_.find(entry_index_key(parent, name, ordered_keys(list, keys)));
  return found != index_.end() ? found->second : nullptr;
}

data_node *data_tree::find_entry(const data_node *parent, const lysc_node *list, std::span<const key_value> keys) {
  return const_cast<data_node *>(std::as_const(*this).find_entry(parent, list, keys));
}

const data_node *data_tree::find_item(const data_node *parent, const lysc_node *leaf_list,
                                      std::string_view value) const {
  std::string key = index_key(parent, yfw::ns(leaf_list), yfw::name(leaf_list));
  add_part(key, value);
  const auto found = index_.find(key);
  return found != index_.end() ? found->second : nullptr;
}

data_node *data_tree::find_item(const data_node *parent, const lysc_node *leaf_list, std::string_view value) {
  return const_cast<data_node *>(std::as_const(*this).find_item(parent, leaf_list, value));
}

// The key under which the index has a node, if it has it.
std::string data_tree::index_key_of(const data_node &node) const {
  std::string key = index_key(node.parent, node.ns, node.tag);
  if (is_leaf_list(node.schema)) {
    add_part(key, node.value.value_or(""));
    return key;
  }
  for (const std::string_view name : keys(node.schema)) {
    const data_node *leaf = key_leaf(node, name);
    add_part(key, name);
    add_part(key, leaf != nullptr ? leaf->value.value_or("") : "");
  }
  return key;
}

// The pointer, of the parent or of a group before, that leads to `next`.
data_node *&data_tree::link_to(data_node &above, const data_node *next) {
  data_node **link = &above.first_child;
  while (*link != next) {
    link = &(*link)->next;
  }
  return *link;
}

// The pointers of the removed node stay as they are: they say where it was.
data_tree::index_handle data_tree::remove(data_node &node) {
  index_handle handle;
  if (is_list(node.schema) || is_leaf_list(node.schema)) {
    const auto found = index_.find(index_key_of(node));
    if (found != index_.end() && found->second == &node) {
      handle = index_.extract(found);
    }
  }
  data_node &above = node.parent == nullptr ? top_ : *node.parent;
  if (data_node *before = node.previous_entry; before != nullptr) {
    before->next_entry = node.next_entry;
    if (node.next_entry != nullptr) {
      node.next_entry->previous_entry = before;
    } else {
      data_node *first = group(node.parent, {node.ns, node.tag, node.schema});
      first->last_entry = before == first ? nullptr : before;
    }
    return handle;
  }
  data_node *following = node.next;
  if (data_node *second = node.next_entry; second != nullptr) {
    second->previous_entry = nullptr;
    second->next = node.next;
    second->last_entry = second->next_entry != nullptr ? node.last_entry : nullptr;
    following = second;
  }
  data_node **link = &link_to(above, &node);
  *link = following;
  if (above.last_child == &node) {
    above.last_child = node.next_entry;
    if (above.last_child == nullptr && above.first_child != nullptr) {
      for (above.last_child = above.first_child; above.last_child->next != nullptr;) {
        above.last_child = above.last_child->next;
      }
    }
  }
  return handle;
}

void data_tree::restore(data_node &node, index_handle handle) noexcept {
  if (!handle.empty()) {
    index_.insert(std::move(handle));  // allocates nothing: the index was as large before
  }
  data_node &above = node.parent == nullptr ? top_ : *node.parent;
  if (data_node *before = node.previous_entry; before != nullptr) {
    before->next_entry = &node;
    if (node.next_entry != nullptr) {
      node.next_entry->previous_entry = &node;
    } else {
      group(node.parent, {node.ns, node.tag, node.schema})->last_entry = &node;
    }
    return;
  }
  data_node *second = node.next_entry;
  link_to(above, second != nullptr ? second : node.next) = &node;
  if (second != nullptr) {
    second->previous_entry = &node;
    second->next = nullptr;
    second->last_entry = nullptr;
  }
  if (node.next == nullptr) {
    above.last_child = &node;
  }
}

// Removes what is below a node from the index.
void data_tree::forget(const data_node &node) {
  each_node(node.first_child, [&](const data_node &below) {
    if (is_list(below.schema) || is_leaf_list(below.schema)) {
      index_.erase(index_key_of(below));
    }
    forget(below);
  });
}

void data_tree::release(data_node &node) {
  forget(node);
  std::vector<data_node *> released{&node};
  for (size_t i = 0; i < released.size(); ++i) {
    const data_node &each = *released[i];
    dead_bytes_ += each.value ? each.value->size() : 0;
    dead_bytes_ += each.schema == nullptr ? each.tag.size() + each.ns.size() : 0;
    each_node(each.first_child, [&](data_node &below) { released.push_back(&below); });
  }
  free_.insert(free_.end(), released.begin(), released.end());
}

void data_tree::keep_again(data_node *level) {
  each_node(level, [&](data_node &node) {
    if (node.value) {
      node.value = keep(*node.value);
    }
    if (node.schema == nullptr) {
      node.tag = keep(node.tag);
      node.ns = keep(node.ns);
    }
    keep_again(node.first_child);
  });
}

void data_tree::compact() {
  constexpr size_t little = 65536;
  if (dead_bytes_ < little || dead_bytes_ < kept_bytes_ / 2) {
    return;
  }
  std::vector<std::unique_ptr<char[]>> texts;
  texts.push_back(std::make_unique_for_overwrite<char[]>(kept_bytes_));  // enough for all: no other one is needed
  texts.swap(texts_);
  text_ = texts_.back().get();
  text_left_ = kept_bytes_;
  kept_bytes_ = dead_bytes_ = 0;
  keep_again(top_.first_child);
}

void data_tree::set_value(data_node &node, std::string_view value) {
  dead_bytes_ += node.value ? node.value->size() : 0;
  node.value = keep(value);
}

void data_tree::restore_value(data_node &node, std::optional<std::string_view> before) noexcept {
  dead_bytes_ += node.value ? node.value->size() : 0;
  dead_bytes_ -= before ? before->size() : 0;
  node.value = before;
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
  kept_bytes_ += text.size();
  return {copy, text.size()};
}

void data_tree::clear() {
  top_ = {};
  nodes_used_ = 0;
  texts_.clear();
  text_left_ = kept_bytes_ = dead_bytes_ = 0;
  free_.clear();
  index_.clear();
}

const data_node *key_leaf(const data_node &entry, std::string_view key) {
  const data_node *leaf = entry.first_child;
  while (leaf != nullptr && !(leaf->tag == key && is_key(leaf->schema))) {
    leaf = leaf->next;
  }
  return leaf;
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
