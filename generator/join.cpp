#include "join.hpp"

#include "fit.hpp"
#include "names.hpp"
#include "targets.hpp"

#include <algorithm>

namespace ymapgen {
namespace {

using node_list = std::vector<const lysc_node *>;

void expect_one_line_each(const std::vector<row> &rows, const node_list &children, const std::string &parent,
                          const place &parent_at) {
  auto next = children.begin();
  for (const row &line : rows) {
    const auto is_named = [&line](const lysc_node *candidate) { return line.name == candidate->name; };
    if (std::none_of(children.begin(), children.end(), is_named)) {
      throw error(line.at, "'" + line.name + "' is not a child of '" + parent + "'");
    }
    if (std::none_of(next, children.end(), is_named)) {
      throw error(line.at, "'" + line.name + "' has its line already");
    }
    if (!is_named(*next)) {
      throw error(line.at, "'" + std::string((*next)->name) + "' of '" + parent + "' needs its line before '" +
                               line.name + "': one line for each node, in the order of the module");
    }
    ++next;
  }
  if (next != children.end()) {
    throw error(rows.empty() ? parent_at : rows.back().at, "'" + std::string((*next)->name) + "' of '" + parent +
                                                               "' has no line: write 'ignore' if nothing maps it");
  }
}

// The children that belong to the module itself. Those of other modules have no lines: augment hooks get them.
node_list own_children_of(const lysc_node *parent, const lys_module *module) {
  const node_list all = children_of(parent);
  node_list own;
  std::copy_if(all.begin(), all.end(), std::back_inserter(own),
               [module](const lysc_node *candidate) { return candidate->module == module; });
  return own;
}

node_kind kind_of(const lysc_node *what, const place &at) {
  switch (what->nodetype) {
    case LYS_CONTAINER:
      return node_kind::container;
    case LYS_LIST:
      return node_kind::list;
    case LYS_LEAF:
    case LYS_LEAFLIST:
      return node_kind::leaf;
    default:
      throw error(at, "'" + path_of(what) + "' is anydata or anyxml, which cannot be mapped");
  }
}

}  // namespace

void joiner::claim_part(const std::string &part, const std::string &path, const place &at) {
  const auto [other, is_new] = paths_by_part_.emplace(part, path);
  if (!is_new) {
    throw error(at, "'" + path + "' and '" + other->second + "' would both be named '" + part + "'");
  }
}

node joiner::described(const row &line, const lysc_node *what) const {
  node result;
  result.name = what->name;
  result.path = path_of(what);
  result.part = path_part(ancestors_, what->name);
  result.kind = kind_of(what, line.at);
  result.action = line.action;
  result.is_config = (what->flags & LYS_CONFIG_W) != 0;
  result.is_read_all = is_read_all_ || line.is_read_all;
  result.is_twice = line.is_twice;
  result.is_replaced = line.is_replaced;
  result.has_hook_by_hand = line.has_hook_by_hand;
  result.translator = line.translator;
  return result;
}

void joiner::join_children(node &result, const row &line, const lysc_node *what) {
  const bool outer_is_read_all = is_read_all_;
  is_read_all_ = result.is_read_all;
  ancestors_.push_back(result.name);
  result.children = join(line.children, own_children_of(what, module_), what, line.at);
  ancestors_.pop_back();
  is_read_all_ = outer_is_read_all;
}

node joiner::join_one(const row &line, const lysc_node *what) {
  node result = described(line, what);
  expect_fit(line, result, source_.direction);
  if (line.action == action::absent) {
    expect_one_line_each(line.children, {}, result.path, line.at);
    return result;
  }
  if (line.action == action::report && source_.wanted.empty()) {
    throw error(line.at, "'report' needs a line 'wanted FUNCTION' in the head");
  }
  claim_part(result.part, result.path, line.at);
  for (const std::string &path : line.paths) {
    result.targets.push_back(resolve_target(modules_, source_, path, line.at));
  }
  join_children(result, line, what);
  return result;
}

std::vector<node> joiner::join(const std::vector<row> &rows, const node_list &children, const lysc_node *parent,
                               const place &parent_at) {
  expect_one_line_each(rows, children, path_of(parent), parent_at);
  std::vector<node> nodes;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    node next = join_one(rows[i], children[i]);
    if (next.action != action::absent) {
      nodes.push_back(std::move(next));
    }
  }
  return nodes;
}

}  // namespace ymapgen
