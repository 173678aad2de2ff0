#include "native_edit.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <new>

namespace yfw {
namespace {

bool is_presence(const lysc_node *node) {
  return is_container(node) && (node->flags & LYS_PRESENCE) != 0;
}

// Whether two nodes are in different cases of one choice.
bool exclude_each_other(const lysc_node *one, const lysc_node *other) {
  const auto outer_case = [](const lysc_node *node) {
    return node != nullptr && node->nodetype == LYS_CASE ? node : nullptr;
  };
  for (const lysc_node *mine = outer_case(one->parent); mine != nullptr; mine = outer_case(mine->parent->parent)) {
    for (const lysc_node *its = outer_case(other->parent); its != nullptr; its = outer_case(its->parent->parent)) {
      if (mine->parent == its->parent) {
        return mine != its;
      }
    }
  }
  return false;
}

// "[name='x']": the keys of a list entry; of a leaf-list's node its value; else nothing.
std::string predicates(const data_node &node) {
  std::string text;
  for (const std::string_view key : keys(node.schema)) {
    const data_node *leaf = key_leaf(node, key);
    const std::string value(leaf != nullptr ? leaf->value.value_or("") : "");
    text.append("[").append(key).append("=").append(key_literal(value)).append("]");
  }
  if (is_leaf_list(node.schema)) {
    text.append("[.=").append(key_literal(std::string(node.value.value_or("")))).append("]");
  }
  return text;
}

// The path of an operation's first steps.
std::string path_to(const native_operation &operation, size_t count) {
  return path_text({operation.steps.begin(), operation.steps.begin() + static_cast<ptrdiff_t>(count)});
}

bool has_several_keys(const path_step &step) {
  return step.keys.size() > 1;
}

// The operation with its keys in the order of each list's key statement, by which paths of one node are the same.
native_operation in_key_order(native_operation operation) {
  for (path_step &step : operation.steps) {
    const std::vector<std::string_view> order = keys(step.node);
    std::ranges::stable_sort(step.keys, {}, [&](const auto &key) { return std::ranges::find(order, key.first); });
  }
  return operation;
}

}  // namespace

// Undoes what was not kept, the last step first.
native_edit::~native_edit() {
  if (undo_.empty()) {
    return;
  }
  for (; !undo_.empty(); undo_.pop_back()) {
    undo_step &step = undo_.back();
    switch (step.what) {
      case undo_step::kind::added:
        drop(*step.node);
        break;
      case undo_step::kind::removed:
        tree_.restore(*step.node, std::move(step.handle));
        break;
      case undo_step::kind::changed:
        tree_.restore_value(*step.node, step.value);
        break;
    }
  }
  compact();
}

// Takes back an addition.
void native_edit::drop(data_node &node) noexcept {
  (void)tree_.remove(node);
  release(node);
}

void native_edit::release(data_node &node) noexcept {
  try {
    tree_.release(node);
  } catch (const std::bad_alloc &) {
    // Memory that could be used again stays in use, no more.
  }
}

// So that the next step can be remembered whatever happens.
void native_edit::make_room() {
  if (undo_.size() == undo_.capacity()) {
    undo_.reserve(2 * undo_.size() + 8);
  }
}

// Only after changes: without any, readers may use the texts.
void native_edit::compact() noexcept {
  try {
    tree_.compact();
  } catch (const std::bad_alloc &) {
    // The texts stay where they are.
  }
}

void native_edit::keep() noexcept {
  if (undo_.empty()) {
    return;
  }
  std::vector<undo_step> steps;
  steps.swap(undo_);
  for (const undo_step &step : steps) {
    if (step.what == undo_step::kind::removed) {
      release(*step.node);
    }
  }
  compact();
}

void native_edit::apply(std::span<const native_operation> operations) {
  for (index_ = 0; index_ < operations.size(); ++index_) {
    const bool has_ordered_keys = std::ranges::none_of(operations[index_].steps, has_several_keys);
    has_ordered_keys ? apply_one(operations[index_]) : apply_one(in_key_order(operations[index_]));
  }
}

void native_edit::apply_one(const native_operation &operation) {
  if (operation.kind == operation_kind::read) {
    return;
  }
  require_editable(operation);
  if (operation.kind == operation_kind::set) {
    set(operation);
  } else {
    remove_target(operation);
  }
}

void native_edit::fail(const native_operation &operation, const std::string &text, error_tag tag) const {
  throw operation_error(index_, in_quotes(operation.path()) + " " + text, tag);
}

void native_edit::require_editable(const native_operation &operation) const {
  if (operation.steps.empty() || !is_config(operation.steps.back().node)) {
    fail(operation, "is operational state, which cannot be edited", error_tag::operation_not_supported);
  }
  for (const path_step &step : operation.steps) {
    if (step.keys.size() != keys(step.node).size()) {
      fail(operation, "lacks a key of " + in_quotes(name(step.node)), error_tag::operation_failed);
    }
  }
}

void native_edit::set(const native_operation &operation) {
  const lysc_node *leaf = operation.steps.back().node;
  const checked_value checked = data_.modules().check_value(leaf, operation.value.value_or(""));
  if (!checked.ok) {
    fail(operation, "does not accept the mapped value: " + to_string(checked.rejected), error_tag::operation_failed);
  }
  data_node *parent = nullptr;
  for (size_t step = 0; step + 1 < operation.steps.size(); ++step) {
    parent = &found_or_added(parent, operation, step);
  }
  set_leaf(parent, operation);
}

// The node that a step leads to, or null.
data_node *native_edit::find(data_node *parent, const path_step &step) const {
  return has_all_keys(step) ? tree_.find_entry(parent, step.node, step_keys(step)) : tree_.find(parent, step.node);
}

data_node &native_edit::found_or_added(data_node *parent, const native_operation &operation, size_t step) {
  const path_step &wanted = operation.steps[step];
  if (data_node *found = find(parent, wanted); found != nullptr) {
    return *found;
  }
  remove_other_cases(parent, operation, step);
  make_room();
  data_node &added = has_all_keys(wanted) ? tree_.entry(parent, ns(wanted.node), name(wanted.node), step_keys(wanted))
                                          : tree_.add(parent, wanted.node);
  remember_addition(added);
  if (is_list(wanted.node) || is_presence(wanted.node)) {
    note(path_to(operation, step + 1), std::nullopt, "");
  }
  return added;
}

void native_edit::remember_addition(data_node &node) {
  undo_.push_back({undo_step::kind::added, &node});
}

void native_edit::set_leaf(data_node *parent, const native_operation &operation) {
  const lysc_node *leaf = operation.steps.back().node;
  const std::string value = operation.value.value_or("");
  data_node *found = is_leaf_list(leaf) ? tree_.find_item(parent, leaf, value) : tree_.find(parent, leaf);
  if (found != nullptr && operation.operation == YFW_OPERATION_CREATE) {
    fail(operation, "already exists", error_tag::data_exists);
  }
  if (found != nullptr && is_key(leaf) && found->value != value) {
    fail(operation, "is a key, which cannot be edited", error_tag::operation_failed);
  }
  const std::string path = operation.path() + (is_leaf_list(leaf) ? "[.=" + key_literal(value) + "]" : "");
  make_room();
  if (found != nullptr) {
    const std::optional<std::string_view> before = found->value;
    note(path, std::string(before.value_or("")), value);
    if (before != value) {
      tree_.set_value(*found, value);
      undo_.push_back({undo_step::kind::changed, found, {}, before});
    }
    return;
  }
  note(path, std::nullopt, value);
  remove_other_cases(parent, operation, operation.steps.size() - 1);
  make_room();
  data_node &added = is_leaf_list(leaf) ? tree_.item(parent, ns(leaf), name(leaf), value) : tree_.add(parent, leaf);
  remember_addition(added);
  if (!is_leaf_list(leaf)) {
    tree_.set_value(added, value);
  }
}

// A node that is added deletes those in the other cases of its choice (RFC 7950, section 7.9).
void native_edit::remove_other_cases(data_node *parent, const native_operation &operation, size_t step) {
  const lysc_node *added = operation.steps[step].node;
  std::vector<data_node *> excluded;
  for (data_node *first = parent == nullptr ? tree_.first() : parent->first_child; first != nullptr;
       first = first->next) {
    const bool is_other = first->schema != nullptr && exclude_each_other(added, first->schema);
    for (data_node *node = is_other ? first : nullptr; node != nullptr; node = node->next_entry) {
      excluded.push_back(node);
    }
  }
  for (data_node *node : excluded) {
    note_removal(*node, path_to(operation, step) + "/" + std::string(node->tag) + predicates(*node));
    remove(*node);
  }
}

void native_edit::remove(data_node &node) {
  make_room();
  data_tree::index_handle handle = tree_.remove(node);
  undo_.push_back({undo_step::kind::removed, &node, std::move(handle)});
}

// Removes what the operation leads to, and containers that are left empty.
void native_edit::remove_target(const native_operation &operation) {
  data_node *parent = nullptr;
  data_node *target = nullptr;
  for (size_t step = 0; step < operation.steps.size(); ++step) {
    parent = target;
    target = find(parent, operation.steps[step]);
    if (target == nullptr) {
      if (operation.operation == YFW_OPERATION_DELETE) {
        fail(operation, "does not exist", error_tag::data_missing);
      }
      return;
    }
  }
  if (is_key(operation.steps.back().node)) {
    fail(operation, "is a key, which cannot be deleted", error_tag::operation_failed);
  }
  const bool is_one_node = has_all_keys(operation.steps.back());  // else all entries of a list or leaf-list go
  while (target != nullptr) {
    data_node *following = is_one_node ? nullptr : target->next_entry;
    note_removal(*target, operation.path() + (is_leaf_list(target->schema) ? predicates(*target) : ""));
    remove(*target);
    target = following;
  }
  while (parent != nullptr && parent->first_child == nullptr && is_container(parent->schema) &&
         !is_presence(parent->schema)) {
    data_node *above = parent->parent;
    remove(*parent);
    parent = above;
  }
}

void native_edit::note_removal(const data_node &node, const std::string &path) {
  if (node.value || is_list(node.schema) || is_presence(node.schema)) {
    note(path, std::string(node.value.value_or("")), std::nullopt);
  }
  each_node(node.first_child, [&](const data_node &below) {
    if (!is_key(below.schema)) {
      note_removal(below, path + "/" + std::string(below.tag) + predicates(below));
    }
  });
}

void native_edit::note(const std::string &path, std::optional<std::string> before, std::optional<std::string> after) {
  const auto [found, is_new] = journal_by_path_.try_emplace(path, journal_.size());
  if (is_new) {
    journal_.push_back({path, std::move(before), std::nullopt});
  }
  journal_[found->second].after = std::move(after);
}

std::vector<device_change> native_edit::effects() const {
  std::vector<device_change> all = journal_;
  std::erase_if(all, [](const device_change &change) { return change.before == change.after; });
  return all;
}

}  // namespace yfw
