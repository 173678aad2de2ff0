#include "join.hpp"

#include "fit.hpp"
#include "names.hpp"
#include "targets.hpp"

#include <algorithm>

namespace ymapgen {
namespace {

using node_list = std::vector<const lysc_node *>;

// Throws unless the row is that of the next child.
void expect_row_of(const lysc_node *next, const row &line, const node_list &children, const lysc_node *parent) {
  if (next != nullptr && line.name == next->name) {
    return;
  }
  const bool is_child = std::any_of(children.begin(), children.end(),
                                    [&line](const lysc_node *candidate) { return line.name == candidate->name; });
  if (!is_child) {
    throw error(line.at, "'" + line.name + "' is not a child of '" + path_of(parent) + "'");
  }
  if (next == nullptr) {
    throw error(line.at, "'" + line.name + "' of '" + path_of(parent) + "' has a line already");
  }
  throw error(line.at, "'" + std::string(next->name) + "' of '" + path_of(parent) + "' needs a line before '" +
                           line.name + "': one for each node, in the order of the module");
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
    join(line.children, {}, what, line.at);
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
  std::vector<node> nodes;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    expect_row_of(i < children.size() ? children[i] : nullptr, rows[i], children, parent);
    node next = join_one(rows[i], children[i]);
    if (next.action != action::absent) {
      nodes.push_back(std::move(next));
    }
  }
  if (rows.size() < children.size()) {
    throw error(rows.empty() ? parent_at : rows.back().at, "'" + std::string(children[rows.size()]->name) + "' of '" +
                                                               path_of(parent) +
                                                               "' has no line: write 'ignore' if nothing maps it");
  }
  return nodes;
}

}  // namespace ymapgen
