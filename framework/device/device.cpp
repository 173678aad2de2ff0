#include "yfw/device.hpp"

#include <set>
#include <sstream>
#include <utility>

#include "device_nodes.hpp"
#include "yfw/node.hpp"

namespace yfw {
namespace {

// Copies nodes with those above them into a tree, each once.
class selection {
 public:
  explicit selection(data_tree &tree) : tree_(tree) {}

  // What `call` leads to from `level` on. `above` are the nodes on the way.
  void add(const std::vector<native_node> &level, const native_operation &call,
           std::vector<const native_node *> &above) {
    const size_t depth = above.size();
    const path_step step = wanted_step(call, depth);
    const bool is_last = depth + 1 == call.steps.size();
    for (const native_node &node : level) {
      if (!leads_to(step, node)) {
        continue;
      }
      if (is_last) {
        copy(node, above);
        continue;
      }
      above.push_back(&node);
      if (is_list(node.schema)) {
        (void)image(above);
      }
      add(node.children, call, above);
      above.pop_back();
    }
  }

 private:
  // A read of a key with a value selects the entry that has it.
  static path_step wanted_step(const native_operation &call, size_t depth) {
    path_step step = call.steps[depth];
    if (call.value && depth + 2 == call.steps.size() && is_key(call.steps.back().node)) {
      step.keys.emplace_back(name(call.steps.back().node), *call.value);
    }
    return step;
  }

  void copy(const native_node &node, std::vector<const native_node *> &above) {
    above.push_back(&node);
    (void)image(above);
    for (const native_node &below : node.children) {
      copy(below, above);
    }
    above.pop_back();
  }

  data_node &image(std::span<const native_node *const> path) {
    const native_node &node = *path.back();
    if (const auto found = images_.find(&node); found != images_.end()) {
      return *found->second;
    }
    data_node *parent = path.size() > 1 ? &image(path.first(path.size() - 1)) : nullptr;
    return add_node(parent, node);
  }

  data_node &add_node(data_node *parent, const native_node &node) {
    data_node &added = tree_.add(parent, node.ns, node.tag);
    images_[&node] = &added;
    if (node.value) {
      tree_.set_value(added, *node.value);
    }
    for (const native_node &below : node.children) {
      if (is_key(below.schema)) {
        (void)add_node(&added, below);
      }
    }
    return added;
  }

  data_tree &tree_;
  std::unordered_map<const native_node *, data_node *> images_;
};

void add_all(data_tree &tree, data_node *parent, const std::vector<native_node> &level) {
  for (const native_node &node : level) {
    data_node &added = tree.add(parent, node.ns, node.tag);
    if (node.value) {
      tree.set_value(added, *node.value);
    }
    add_all(tree, &added, node.children);
  }
}

bool holds_values(const lysc_node *schema) {
  return is_leaf(schema) || is_leaf_list(schema);
}

}  // namespace

device device::read(document native) {
  device result(std::move(native));
  result.fill(result.roots_, result.open_envelopes());
  return result;
}

// Remembers the elements around the data and returns what they hold.
std::span<const yfw_node_t> device::open_envelopes() {
  std::span<const yfw_node_t> level = std::as_const(*source_).roots();
  while (level.size() == 1 && is_envelope(level.front())) {
    const yfw_node_t &node = level.front();
    const std::string_view tag = node.tag;
    const bool is_reply = tag == "rpc-reply" && envelopes_.empty() && children(node).size() == 1;
    if (!is_reply && tag != "data" && tag != "config") {
      throw error(source_->where(node), in_quotes(tag) + " is not native data; 'data' with native data is");
    }
    wrapper &kept = envelopes_.emplace_back(wrapper{node.tag, node.ns});
    if (const auto id = source_->attribute(node, "", "message-id"); id) {
      kept.attributes.emplace_back("message-id", *id);
    }
    level = children(node);
    if (!is_reply) {
      break;
    }
  }
  return level;
}

void device::fill(std::vector<native_node> &level, std::span<const yfw_node_t> from) {
  std::set<std::string> seen;
  level.reserve(from.size());
  for (const yfw_node_t &node : from) {
    const native_node &added = level.emplace_back(loaded(node));
    const bool is_one_of_many = added.schema == nullptr || (is_list(added.schema) && keys(added.schema).empty());
    const std::string identity = std::string(added.ns) + ' ' + std::string(added.tag) + predicates(added);
    if (!is_one_of_many && !seen.insert(identity).second) {
      throw error(source_->where(node), in_quotes(node.tag) + " appears twice");
    }
  }
}

native_node device::loaded(const yfw_node_t &from) {
  const lysc_node *schema = extra(from).schema;
  if (extra(from).given_operation != no_operation || is_envelope(from)) {
    throw error(source_->where(from), is_envelope(from) ? "a message within data" : "a device's data has no operation");
  }
  native_node node{schema, from.ns, from.tag, std::nullopt, {}};
  if (schema == nullptr && source_->format() == data_format::json && why_unwritable_.empty()) {
    unwritable_ = source_->where(from);
    why_unwritable_ = "the modules do not know it, so that it could not be written back as it is";
  }
  load_value(node, from);
  fill(node.children, children(from));
  for (const std::string_view key : keys(schema)) {
    if (key_text(node, key) == nullptr) {
      throw error(source_->where(from), "list entry without its key " + in_quotes(key));
    }
  }
  return node;
}

// Prefixes hold for one place of one document only, so that a value is kept without. What cannot be is not written.
void device::load_value(native_node &to, const yfw_node_t &from) {
  if (from.value == nullptr) {
    if (holds_values(to.schema)) {
      to.value = "";
    }
    return;
  }
  to.value = from.value;
  const size_t colon = to.value->find(':');
  if (colon == std::string::npos || !source_->prefix_namespace(from, to.value->substr(0, colon))) {
    return;
  }
  const checked_value checked = holds_values(to.schema) ? source_->check(from) : checked_value{};
  if (checked.ok && !modules().identity_module(to.schema, checked.canonical).empty()) {
    to.value = checked.canonical;
  } else if (source_->format() == data_format::xml && why_unwritable_.empty()) {
    unwritable_ = source_->where(from);
    why_unwritable_ = in_quotes(*to.value) + " could not be written back with its prefix";
  }
}

data_tree device::select(std::span<const native_operation> calls) const {
  data_tree tree(modules());
  selection selected(tree);
  for (const native_operation &call : calls) {
    std::vector<const native_node *> above;
    if (call.kind == operation_kind::read && !call.steps.empty()) {
      selected.add(roots_, call, above);
    }
  }
  return tree;
}

std::string device::text() const {
  if (!why_unwritable_.empty()) {
    throw error(unwritable_, why_unwritable_);
  }
  data_tree tree(modules());
  add_all(tree, nullptr, roots_);
  std::ostringstream out;
  if (source_->format() == data_format::json) {
    write_json(out, tree);
  } else {
    const bool is_bare = envelopes_.empty() && roots_.size() == 1;
    write_xml(out, tree,
              {.wrappers = envelopes_.empty() && !is_bare ? std::vector{wrapper{"data", netconf_ns}} : envelopes_});
  }
  return out.str();
}

}  // namespace yfw
