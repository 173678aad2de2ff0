#include <libyang/libyang.h>

#include <algorithm>
#include <utility>

#include "device_nodes.hpp"

namespace yfw {
namespace {

[[noreturn]] void refuse(const native_operation &call, const std::string &text, error_tag tag) {
  throw client_error({}, in_quotes(call.path()) + " " + text, tag);
}

void require_editable(const native_operation &call) {
  if (call.steps.empty() || !is_config(call.steps.back().node)) {
    refuse(call, "is operational state of the device, which cannot be edited", error_tag::operation_not_supported);
  }
  for (const path_step &step : call.steps) {
    if (step.keys.size() != keys(step.node).size()) {
      refuse(call, "lacks a key of " + in_quotes(name(step.node)), error_tag::operation_failed);
    }
  }
}

bool is_presence(const lysc_node *node) {
  return is_container(node) && (node->flags & LYS_PRESENCE) != 0;
}

native_node blank(const lysc_node *schema) {
  return {schema, ns(schema), name(schema), std::nullopt, {}};
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

// The list and the values of its keys, in their order there; "" when one is missing.
template <typename value_of_t>
std::string identity(const lysc_node *list, const value_of_t &value_of) {
  std::string text = std::to_string(reinterpret_cast<uintptr_t>(list));
  for (const std::string_view key : keys(list)) {
    const std::string *value = value_of(key);
    if (value == nullptr) {
      return {};
    }
    text.append(1, '\0').append(*value);
  }
  return text;
}

std::string path_to(const native_operation &call, size_t step) {
  native_operation shortened = call;
  shortened.steps.resize(step + 1);
  return shortened.path();
}

std::string path_above(const native_operation &call, size_t step) {
  return step == 0 ? std::string() : path_to(call, step - 1);
}

}  // namespace

void device_edit::apply(const native_operation &call) {
  if (call.kind == operation_kind::read) {
    return;
  }
  require_editable(call);
  if (call.kind == operation_kind::set) {
    set(call);
  } else {
    (void)remove(roots_, call, 0);
  }
}

void device_edit::set(const native_operation &call) {
  const lysc_node *leaf = call.steps.back().node;
  const checked_value checked = target_.modules().check_value(leaf, call.value.value_or(""));
  if (!checked.ok) {
    refuse(call, "does not take what the mapping made of it: " + checked.why, error_tag::operation_failed);
  }
  std::vector<native_node> *level = &roots_;
  for (size_t step = 0; step + 1 < call.steps.size(); ++step) {
    level = &reached(*level, call, step).children;
  }
  set_leaf(*level, call);
}

// The node that a step leads to, or null. Lists in which many entries are looked for get an index, so that an edit of
// all entries takes no time that grows with the square of their number.
native_node *device_edit::find(std::vector<native_node> &level, const native_operation &call, size_t step) {
  constexpr unsigned enough_searches = 16;
  const path_step &wanted = call.steps[step];
  const auto search = [&] {
    const auto found = std::ranges::find_if(level, [&](const native_node &node) { return leads_to(wanted, node); });
    return found != level.end() ? &*found : nullptr;
  };
  if (!is_list(wanted.node) || level.size() < enough_searches) {
    return search();
  }
  level_index &index = indexes_[path_above(call, step)];
  if (++index.searches < enough_searches) {
    return search();
  }
  for (; index.size < level.size(); ++index.size) {
    const native_node &node = level[index.size];
    if (is_list(node.schema)) {
      index.places.emplace(identity(node.schema, [&](std::string_view key) { return key_text(node, key); }),
                           index.size);
    }
  }
  const auto place = index.places.find(identity(wanted.node, [&](std::string_view key) {
    const auto given = std::ranges::find(wanted.keys, key, &std::pair<std::string_view, std::string>::first);
    return given != wanted.keys.end() ? &given->second : nullptr;
  }));
  return place != index.places.end() ? &level[place->second] : nullptr;
}

// The node that a step leads to, made when missing.
native_node &device_edit::reached(std::vector<native_node> &level, const native_operation &call, size_t step) {
  const path_step &wanted = call.steps[step];
  if (native_node *found = find(level, call, step); found != nullptr) {
    return *found;
  }
  drop_other_cases(level, call, step);
  native_node &made = level.emplace_back(blank(wanted.node));
  for (const lysc_node *below : target_.modules().children(wanted.node)) {
    const auto key = std::ranges::find(wanted.keys, name(below), &std::pair<std::string_view, std::string>::first);
    if (is_key(below) && key != wanted.keys.end()) {
      made.children.emplace_back(blank(below)).value = key->second;
    }
  }
  if (is_list(wanted.node) || is_presence(wanted.node)) {
    note(path_to(call, step), std::nullopt, "");
  }
  return made;
}

void device_edit::set_leaf(std::vector<native_node> &level, const native_operation &call) {
  const lysc_node *leaf = call.steps.back().node;
  const std::string value = call.value.value_or("");
  const auto found = std::ranges::find_if(level, [&](const native_node &node) {
    return node.schema == leaf && (!is_leaf_list(leaf) || node.value == value);
  });
  const bool is_there = found != level.end();
  if (is_there && call.operation == YFW_OPERATION_CREATE) {
    refuse(call, "is there already", error_tag::data_exists);
  }
  if (is_there && is_key(leaf) && found->value != value) {
    refuse(call, "is a key, which cannot be edited", error_tag::operation_failed);
  }
  const std::string path = call.path() + (is_leaf_list(leaf) ? "[.=" + key_literal(value) + "]" : "");
  note(path, is_there ? found->value : std::nullopt, value);
  if (is_there) {
    found->value = value;
  } else {
    drop_other_cases(level, call, call.steps.size() - 1);
    level.emplace_back(blank(leaf)).value = value;
  }
}

// A node that is made deletes those in the other cases of its choice (RFC 7950, section 7.9).
void device_edit::drop_other_cases(std::vector<native_node> &level, const native_operation &call, size_t step) {
  const auto is_excluded = [&](const native_node &node) {
    return node.schema != nullptr && exclude_each_other(call.steps[step].node, node.schema);
  };
  for (const native_node &node : level) {
    if (is_excluded(node)) {
      note_removal(node, path_above(call, step) + "/" + std::string(node.tag) + predicates(node));
    }
  }
  if (std::erase_if(level, is_excluded) != 0) {
    forget_places(call, step);
  }
}

// True when something is removed. Containers that are left empty are removed on the way back.
bool device_edit::remove(std::vector<native_node> &level, const native_operation &call, size_t step) {
  native_node *found = find(level, call, step);
  if (found == nullptr) {
    if (call.operation == YFW_OPERATION_DELETE) {
      refuse(call, "is not there", error_tag::data_missing);
    }
    return false;
  }
  if (step + 1 == call.steps.size()) {
    if (is_key(found->schema)) {
      refuse(call, "is a key, which cannot be deleted", error_tag::operation_failed);
    }
    const auto is_wanted = [&](const native_node &node) { return leads_to(call.steps[step], node); };
    for (const native_node &node : level) {
      if (is_wanted(node)) {
        note_removal(node, call.path() + (is_leaf_list(node.schema) ? predicates(node) : ""));
      }
    }
    std::erase_if(level, is_wanted);
    forget_places(call, step);
    return true;
  }
  const bool is_removed = remove(found->children, call, step + 1);
  if (is_removed && found->children.empty() && is_container(found->schema) && !is_presence(found->schema)) {
    level.erase(level.begin() + (found - level.data()));
    forget_places(call, step);
  }
  return is_removed;
}

// After nodes of a level were removed: others have moved up.
void device_edit::forget_places(const native_operation &call, size_t step) {
  if (!indexes_.empty()) {
    const std::string above = path_above(call, step);
    std::erase_if(indexes_, [&](const auto &each) { return each.first.starts_with(above); });
  }
}

void device_edit::note_removal(const native_node &node, const std::string &path) {
  if (node.value || is_list(node.schema) || is_presence(node.schema)) {
    note(path, node.value.value_or(""), std::nullopt);
  }
  for (const native_node &below : node.children) {
    if (!is_key(below.schema)) {
      note_removal(below, path + "/" + std::string(below.tag) + predicates(below));
    }
  }
}

void device_edit::note(const std::string &path, std::optional<std::string> before, std::optional<std::string> after) {
  const auto [found, is_new] = journal_by_path_.try_emplace(path, journal_.size());
  if (is_new) {
    journal_.push_back({path, std::move(before), std::nullopt});
  }
  journal_[found->second].after = std::move(after);
}

std::vector<device_change> device_edit::changes() const {
  std::vector<device_change> all = journal_;
  std::erase_if(all, [](const device_change &change) { return change.before == change.after; });
  return all;
}

}  // namespace yfw
