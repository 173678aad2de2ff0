#include "yfw/schema.hpp"

#include <algorithm>
#include <numeric>
#include <set>

#include "yfw/error.hpp"
#include "yfw/internal/path_steps.hpp"
#include "yfw/internal/schema_internal.hpp"
#include "yfw/namespaces.hpp"

namespace yfw {

const lysc_node *schema::top(std::string_view ns, std::string_view name) const {
  return child(nullptr, ns, name);
}

const lysc_node *schema::child(const lysc_node *parent, std::string_view ns, std::string_view name) const {
  const auto [first, last] = parts_->by_name.equal_range({parent, name});
  const auto found = std::find_if(first, last, [&](const auto &each) { return yfw::ns(each.second) == ns; });
  return found == last ? nullptr : found->second;
}

const lysc_node *schema::find(std::string_view path, std::string_view ns) const {
  std::vector<const lysc_node *> found = find_all(path);
  std::erase_if(found, [&](const lysc_node *node) { return !ns.empty() && yfw::ns(node) != ns; });
  return found.size() == 1 ? found.front() : nullptr;
}

std::vector<const lysc_node *> schema::find_all(std::string_view path) const {
  std::vector<const lysc_node *> reached{nullptr};
  if (!path.starts_with('/')) {
    return {};
  }
  while (!path.empty() && !reached.empty()) {
    const std::string_view step = next_step(path);
    std::vector<const lysc_node *> next;
    for (const lysc_node *parent : reached) {
      const auto [first, last] = parts_->by_name.equal_range({parent, step});
      std::transform(first, last, std::back_inserter(next), [](const auto &each) { return each.second; });
    }
    reached = std::move(next);
  }
  return reached;
}

const std::vector<const lysc_node *> &schema::children(const lysc_node *parent) const {
  static const std::vector<const lysc_node *> none;
  const auto found = parts_->children.find(parent);
  return found == parts_->children.end() ? none : found->second;
}

std::string schema::unknown_name(const std::vector<const lysc_node *> &parents, std::string_view name,
                                 const std::string &written) const {
  std::vector<std::string_view> names;
  std::set<std::string_view> defining;
  std::set<std::string> paths;
  for (const lysc_node *above : parents) {
    paths.insert(path(above));
    for (const lysc_node *below : children(above)) {
      names.push_back(yfw::name(below));
      if (yfw::name(below) == name) {
        defining.insert(module_name(below));
      }
    }
  }
  std::string text = written;
  text += paths.size() != 1    ? " is not a child of any node before it"
          : paths.contains("") ? " is not a top-level node of the modules"
                               : " is not a child of " + in_quotes(*paths.begin());
  if (defining.empty()) {
    return text + did_you_mean(names, name);
  }
  return text + "; " + in_quotes(name) + " is defined in module " + quoted_list(defining);
}

std::string_view schema::ns_of_module(std::string_view module) const {
  const auto found = parts_->ns_by_module.find(module);
  if (found != parts_->ns_by_module.end()) {
    return found->second;
  }
  return module == "ietf-netconf" ? netconf_ns : module == "ietf-restconf" ? restconf_ns : "";
}

std::string_view schema::module_of_ns(std::string_view ns) const {
  const auto found = parts_->module_by_ns.find(ns);
  if (found != parts_->module_by_ns.end()) {
    return found->second;
  }
  return ns == netconf_ns ? "ietf-netconf" : ns == restconf_ns ? "ietf-restconf" : "";
}

std::vector<std::string_view> schema::modules() const {
  return parts_->modules;
}

static bool is_type(const lysc_node *node, unsigned types) {
  return node != nullptr && (node->nodetype & types) != 0;
}

bool is_list(const lysc_node *node) {
  return is_type(node, LYS_LIST);
}
bool is_leaf(const lysc_node *node) {
  return is_type(node, LYS_LEAF);
}
bool is_leaf_list(const lysc_node *node) {
  return is_type(node, LYS_LEAFLIST);
}
bool is_container(const lysc_node *node) {
  return is_type(node, LYS_CONTAINER);
}

bool holds_value(const lysc_node *node) {
  return is_leaf(node) || is_leaf_list(node);
}
bool is_config(const lysc_node *node) {
  return node != nullptr && (node->flags & LYS_CONFIG_W) != 0;
}
bool is_key(const lysc_node *node) {
  return is_leaf(node) && (node->flags & LYS_KEY) != 0;
}

std::string_view name(const lysc_node *node) {
  return node->name;
}
std::string_view ns(const lysc_node *node) {
  return node->module->ns;
}
std::string_view module_name(const lysc_node *node) {
  return node->module->name;
}

std::string_view module_prefix(const lysc_node *node) {
  return node->module->prefix;
}

const lysc_node *parent(const lysc_node *node) {
  const lysc_node *above = node->parent;
  while (is_type(above, LYS_CHOICE | LYS_CASE)) {
    above = above->parent;
  }
  return above;
}

bool is_within(const lysc_node *node, const lysc_node *top) {
  while (node != nullptr && node != top) {
    node = node->parent;
  }
  return node == top;
}

std::vector<std::string_view> keys(const lysc_node *list) {
  std::vector<std::string_view> names;
  if (is_list(list)) {
    for (const lysc_node *each = lysc_node_child(list); is_key(each); each = each->next) {
      names.emplace_back(each->name);
    }
  }
  return names;
}

static std::string path_text(const lysc_node *node, bool is_qualified) {
  if (node == nullptr) {
    return "";
  }
  const lysc_node *above = parent(node);
  const bool has_module = is_qualified && (above == nullptr || above->module != node->module);
  return path_text(above, is_qualified) + '/' + (has_module ? std::string(node->module->name) + ':' : "") + node->name;
}

std::string path(const lysc_node *node) {
  return path_text(node, false);
}
std::string qualified_path(const lysc_node *node) {
  return path_text(node, true);
}

// Levenshtein's distance, one row at a time.
static size_t edit_distance(std::string_view first, std::string_view second) {
  std::vector<size_t> row(second.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 1; i <= first.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i;
    for (size_t j = 1; j <= second.size(); ++j) {
      const size_t replaced = diagonal + (first[i - 1] == second[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row.back();
}

std::string_view closest(const std::vector<std::string_view> &names, std::string_view word) {
  constexpr size_t longest = 256;  // of a word that is worth the time
  std::string_view best;
  size_t best_distance = 1 + word.size() / 3;
  for (const std::string_view candidate : names) {
    const size_t distance = word.size() > longest ? best_distance + 1 : edit_distance(candidate, word);
    if (distance < best_distance || (distance == best_distance && best.empty())) {
      best = candidate;
      best_distance = distance;
    }
  }
  return best;
}

std::string did_you_mean(const std::vector<std::string_view> &names, std::string_view word) {
  const std::string_view near = closest(names, word);
  return near.empty() ? "" : "; did you mean " + in_quotes(near) + "?";
}

}  // namespace yfw
