#include "native_data.hpp"

#include <algorithm>
#include <sstream>
#include <utility>

#include "yfw/node.hpp"
#include "yfw/query.hpp"

namespace yfw {
namespace {

// Adds what a read names to a selection.
class reader {
 public:
  reader(const data_tree &tree, tree_selection &selected) : tree_(tree), selected_(selected) {}

  // What the operation's steps from `depth` on lead to below `parent`.
  void add(const native_operation &operation, const data_node *parent, size_t depth) {
    const path_step step = step_with_value(operation, depth);
    const bool is_last = depth + 1 == operation.steps.size();
    const auto visit = [&](const data_node &node) {
      if (is_last) {
        selected_.add_subtree(node);
        return;
      }
      if (is_list(node.schema)) {
        (void)selected_.add(node);
      }
      add(operation, &node, depth + 1);
    };
    if (is_list(step.node) && has_all_keys(step)) {
      if (const data_node *entry = tree_.find_entry(parent, step.node, step_keys(step)); entry != nullptr) {
        visit(*entry);
      }
      return;
    }
    for (const data_node *node = tree_.find(parent, step.node); node != nullptr; node = node->next_entry) {
      if (has_keys(*node, step)) {
        visit(*node);
      }
    }
  }

 private:
  // A read of a key with a value selects the entry that has it.
  static path_step step_with_value(const native_operation &operation, size_t depth) {
    path_step step = operation.steps[depth];
    if (operation.value && depth + 2 == operation.steps.size() && is_key(operation.steps.back().node)) {
      step.keys.emplace_back(name(operation.steps.back().node), *operation.value);
    }
    return step;
  }

  bool has_keys(const data_node &entry, const path_step &step) const {
    return std::ranges::all_of(step.keys, [&](const auto &key) {
      const lysc_node *leaf = tree_.modules().child(step.node, ns(step.node), key.first);
      const data_node *found = tree_.find(&entry, leaf);
      return found != nullptr && found->value == key.second;
    });
  }

  const data_tree &tree_;
  tree_selection &selected_;
};

}  // namespace

bool has_all_keys(const path_step &step) {
  const std::vector<std::string_view> names = keys(step.node);
  return !names.empty() && names.size() == step.keys.size();
}

native_data::native_data(const document &source)
    : tree_(source.modules()), file_(source.file()), format_(source.format()) {
  load_level(source, open_envelopes(source), nullptr);
}

// Remembers the elements around the data and returns what they hold.
std::span<const yfw_node_t> native_data::open_envelopes(const document &source) {
  std::span<const yfw_node_t> level = source.roots();
  while (level.size() == 1 && is_envelope(level.front())) {
    const yfw_node_t &node = level.front();
    const std::string_view tag = node.tag;
    const bool is_reply = tag == "rpc-reply" && envelopes_.empty() && children(node).size() == 1;
    if (!is_reply && tag != "data" && tag != "config") {
      throw error(source.where(node), in_quotes(tag) + " is not native data; 'data' with native data is");
    }
    wrapper &kept = envelopes_.emplace_back(wrapper{node.tag, node.ns});
    if (const auto id = source.attribute(node, "", "message-id"); id) {
      kept.attributes.emplace_back("message-id", *id);
    }
    level = children(node);
    if (!is_reply) {
      break;
    }
  }
  return level;
}

void native_data::load_level(const document &source, std::span<const yfw_node_t> level, data_node *parent) {
  for (const yfw_node_t &node : level) {
    load(source, node, parent);
  }
}

void native_data::load(const document &source, const yfw_node_t &from, data_node *parent) {
  const lysc_node *schema = extra(from).schema;
  if (extra(from).given_operation != no_operation || is_envelope(from)) {
    throw error(source.where(from),
                is_envelope(from) ? "a message element within data" : "operations are not allowed in a device's data");
  }
  if (is_key(schema) && tree_.find(parent, schema) != nullptr) {
    return;  // came with its entry
  }
  if (schema == nullptr && format_ == data_format::json) {
    set_unwritable(source.where(from), "is not defined in the modules and could not be written back unchanged");
  }
  load_level(source, children(from), &added(source, from, parent));
}

data_node &native_data::added(const document &source, const yfw_node_t &from, data_node *parent) {
  const lysc_node *schema = extra(from).schema;
  const auto fail_if = [&](bool is_there) {
    if (is_there) {
      throw error(source.where(from), in_quotes(from.tag) + " appears twice");
    }
  };
  if (schema == nullptr) {
    data_node &node = tree_.add(parent, from.ns, from.tag);
    if (from.value != nullptr) {
      tree_.set_value(node, loaded_value(source, from));
    }
    return node;
  }
  if (is_leaf_list(schema)) {
    const std::string value = loaded_value(source, from);
    if (tree_.find_item(parent, schema, value) != nullptr) {
      fail_if(is_config(schema));  // state may repeat values (RFC 7950, section 7.7)
      data_node &node = tree_.add(parent, schema);
      tree_.set_value(node, value);
      return node;
    }
    return tree_.item(parent, ns(schema), name(schema), value);
  }
  if (!is_list(schema)) {
    fail_if(tree_.find(parent, schema) != nullptr);
    data_node &node = tree_.add(parent, schema);
    if (is_leaf(schema) || from.value != nullptr) {
      tree_.set_value(node, loaded_value(source, from));
    }
    return node;
  }
  std::vector<std::string> values;
  for (const std::string_view key : keys(schema)) {
    const yfw_node_t *leaf = child(from, key, from.ns);
    if (leaf == nullptr || !is_key(extra(*leaf).schema)) {
      throw error(source.where(from), "list entry without its key " + in_quotes(key));
    }
    values.push_back(loaded_value(source, *leaf));
    for (const yfw_node_t &other : children(from)) {
      if (&other != leaf && extra(other).schema == extra(*leaf).schema) {
        throw error(source.where(other), in_quotes(other.tag) + " appears twice");
      }
    }
  }
  if (values.empty()) {
    return tree_.add(parent, schema);
  }
  std::vector<key_value> given;
  std::ranges::transform(keys(schema), values, std::back_inserter(given),
                         [](std::string_view key, const std::string &value) {
                           return key_value{key, value};
                         });
  fail_if(tree_.find_entry(parent, schema, given) != nullptr);
  return tree_.entry(parent, ns(schema), name(schema), given);
}

// Prefixes hold for one place of one document only, so that a value is kept without. What cannot be is not written.
std::string native_data::loaded_value(const document &source, const yfw_node_t &from) {
  if (from.value == nullptr) {
    return "";
  }
  const std::string_view value = from.value;
  const size_t colon = value.find(':');
  if (colon == std::string_view::npos || !source.prefix_namespace(from, value.substr(0, colon))) {
    return std::string(value);
  }
  const lysc_node *schema = extra(from).schema;
  const checked_value checked = holds_value(schema) ? source.check(from) : checked_value{};
  if (checked.ok && !modules().identity_module(schema, checked.canonical).empty()) {
    return checked.canonical;
  }
  if (format_ == data_format::xml) {
    set_unwritable(source.where(from), in_quotes(value) + " could not be written back with its prefix");
  }
  return std::string(value);
}

// Keeps the first place.
void native_data::set_unwritable(place where, const std::string &why) {
  if (why_unwritable_.empty()) {
    unwritable_ = std::move(where);
    why_unwritable_ = why;
  }
}

data_tree native_data::select(std::span<const native_operation> operations) const {
  data_tree selection(modules());
  tree_selection selected(selection, content::all);
  reader reads(tree_, selected);
  for (const native_operation &operation : operations) {
    if (operation.kind == operation_kind::read && !operation.steps.empty()) {
      reads.add(operation, nullptr, 0);
    }
  }
  return selection;
}

std::string native_data::text() const {
  if (!why_unwritable_.empty()) {
    throw error(unwritable_, why_unwritable_);
  }
  std::ostringstream out;
  if (format_ == data_format::json) {
    write_json(out, tree_);
    return out.str();
  }
  const data_node *first = tree_.first();
  const bool is_bare = envelopes_.empty() && first != nullptr && first->next == nullptr && first->next_entry == nullptr;
  write_xml(out, tree_,
            {.wrappers = envelopes_.empty() && !is_bare ? std::vector{wrapper{"data", netconf_ns}} : envelopes_});
  return out.str();
}

}  // namespace yfw
