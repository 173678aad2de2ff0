#include <algorithm>

#include "yfw/node.hpp"
#include "yfw/query.hpp"

namespace yfw {
namespace {

// RFC 6241, section 6.2: containment, selection and content match nodes.
class subtree_filter {
 public:
  subtree_filter(const document &request, tree_selection &selected) : request_(request), selected_(selected) {}

  void apply(const data_node *level, const yfw_node_t &filter) {
    each_node(level, [&](const data_node &node) {
      if (node.tag == filter.tag && node.ns == filter.ns) {
        apply_to(node, filter);
      }
    });
  }

 private:
  static bool is_match(const yfw_node_t &filter) {
    return filter.value != nullptr && holds_value(extra(filter).schema);
  }

  void apply_to(const data_node &node, const yfw_node_t &filter) {
    const auto below = children(filter);
    const auto matches = std::ranges::count_if(below, is_match);
    const bool has_all = std::ranges::all_of(
        below, [&](const yfw_node_t &each) { return !is_match(each) || matched(node, each) != nullptr; });
    if (!has_all) {
      return;
    }
    if (static_cast<size_t>(matches) == below.size()) {
      selected_.add_subtree(node);
      return;
    }
    for (const yfw_node_t &each : below) {
      if (is_match(each)) {
        (void)selected_.add(*matched(node, each));
      } else {
        apply(node.first_child, each);
      }
    }
  }

  // The child that has the filter's value, or null.
  const data_node *matched(const data_node &node, const yfw_node_t &filter) const {
    const checked_value checked = request_.check(filter);
    const std::string_view wanted = checked.ok ? std::string_view(checked.canonical) : filter.value;
    const data_node *found = nullptr;
    each_node(node.first_child, [&](const data_node &each) {
      if (each.tag == filter.tag && each.ns == filter.ns && each.value == wanted) {
        found = &each;
      }
    });
    return found;
  }

  const document &request_;
  tree_selection &selected_;
};

}  // namespace

data_node &tree_selection::add(const data_node &node) {
  if (const auto found = images_.find(&node); found != images_.end()) {
    return *found->second;
  }
  data_node *parent = node.parent != nullptr ? &add(*node.parent) : nullptr;
  if (const auto found = images_.find(&node); found != images_.end()) {
    return *found->second;  // a key, which came with its entry
  }
  data_node &added = to_.add(parent, node.ns, node.tag);
  images_[&node] = &added;
  if (node.value) {
    to_.set_value(added, *node.value);
  }
  each_node(is_list(node.schema) ? node.first_child : nullptr, [&](const data_node &below) {
    if (is_key(below.schema)) {
      (void)add(below);
    }
  });
  return added;
}

void tree_selection::add_subtree(const data_node &node) {
  bool is_made_by_content = false;
  each_node(node.first_child, [&](const data_node &below) {
    if (!is_key(below.schema)) {
      is_made_by_content = true;
      add_subtree(below);
    }
  });
  if (!is_made_by_content && (!holds_value(node.schema) || is_wanted(node.schema))) {
    (void)add(node);
  }
}

bool tree_selection::is_wanted(const lysc_node *leaf) const {
  return wanted_ == content::all || is_key(leaf) || is_config(leaf) == (wanted_ == content::config);
}

data_tree selected_content(const data_tree &data, content wanted) {
  data_tree result(data.modules());
  tree_selection selected(result, wanted);
  each_node(data.first(), [&](const data_node &node) { selected.add_subtree(node); });
  return result;
}

data_tree filtered(const data_tree &data, const document &request, std::span<yfw_node_t *const> filter,
                   content wanted) {
  data_tree result(data.modules());
  tree_selection selected(result, wanted);
  subtree_filter applied(request, selected);
  for (const yfw_node_t *node : filter) {
    applied.apply(data.first(), *node);
  }
  return result;
}

}  // namespace yfw
