#include "yfw/internal/plugin_input.hpp"

#include <algorithm>
#include <utility>

#include "yfw/internal/text.hpp"

namespace yfw {
namespace {

bool is_value_leaf(const yfw_node_t &node) {
  const lysc_node *schema = extra(node).schema;
  return is_leaf(schema) || is_leaf_list(schema);
}

// Below a replaced node nothing is left, so that children are merged. A leaf below a created node is created itself.
uint32_t inherited_by_children(uint32_t operation) {
  return operation == YFW_OPERATION_REPLACE ? YFW_OPERATION_MERGE : operation;
}

void set_children(yfw_node_t &node, yfw_node_t *array, size_t count) {
  node.children = array;
  node.child_count = static_cast<uint32_t>(count);
  node.flags |= YFW_NODE_HAS_CHILDREN;
}

// What distinguishes a node from its siblings: its name, the keys of a list entry, the value of a leaf-list entry.
std::string identity(const yfw_node_t &node) {
  std::string text = std::string(node.ns) + ' ' + node.tag;
  const lysc_node *schema = extra(node).schema;
  if (is_leaf_list(schema)) {
    text.append(1, '\0').append(node.value != nullptr ? node.value : "");
  }
  for (const std::string_view key : keys(schema)) {
    const yfw_node_t *leaf = child(node, key);
    text.append(1, '\0').append(leaf != nullptr && leaf->value != nullptr ? leaf->value : "");
  }
  return text;
}

bool is_fit_for_its_kind(const yfw_node_t &node, error_collector &errors) {
  const lysc_node *schema = extra(node).schema;
  const bool is_inner = is_container(schema) || is_list(schema);
  if (is_inner && node.value != nullptr && !is_blank(std::string_view(node.value))) {
    errors.add(node, "is not a leaf, but has the value " + in_quotes(node.value), error_tag::bad_element);
    return false;
  }
  return true;
}

}  // namespace

bool is_known_node(const document &request, const yfw_node_t &node, error_collector &errors) {
  if (extra(node).schema != nullptr) {
    return is_fit_for_its_kind(node, errors);
  }
  const yfw_node_t *above = extra(node).parent;
  const bool is_top = above == nullptr || is_envelope(*above);
  const lysc_node *holder = is_top ? nullptr : extra(*above).schema;
  const std::string text =
      request.modules().unknown_name({holder}, node.tag, in_quotes(node.tag) + " of namespace " + in_quotes(node.ns));
  const bool is_known_module = !request.modules().module_of_ns(node.ns).empty();
  errors.add(node, text, is_known_module ? error_tag::unknown_element : error_tag::unknown_namespace);
  return false;
}

void check_key_operation(const yfw_node_t &key, error_collector &errors) {
  const uint8_t given = extra(key).given_operation;
  if (deletes(given) || given == YFW_OPERATION_CREATE) {
    errors.add(key, "is a key; put operation " + in_quotes(operation_word(given)) + " on its list entry",
               error_tag::bad_element);
  }
}

void check_not_repeated(const std::vector<const yfw_node_t *> &siblings, error_collector &errors) {
  std::set<std::string> seen;
  for (const yfw_node_t *node : siblings) {
    if (!seen.insert(identity(*node)).second) {
      errors.add(*node, in_quotes(node->tag) + " appears twice", error_tag::bad_element);
    }
  }
}

void check_children_not_repeated(const yfw_node_t &parent, error_collector &errors) {
  std::vector<const yfw_node_t *> siblings;
  for (const yfw_node_t &node : children(parent)) {
    siblings.push_back(&node);
  }
  check_not_repeated(siblings, errors);
}

yfw_node_t *plugin_input::copy(const yfw_node_t &from, uint32_t inherited,
                               const std::set<const yfw_node_t *> &omitted) {
  omitted_ = omitted;
  yfw_node_t *to = arena_.nodes(1);
  return fill(*to, from, inherited) ? to : nullptr;
}

yfw_node_t *plugin_input::placeholder(const lysc_node *schema) {
  yfw_node_t *node = arena_.nodes(1);
  node->tag = arena_.text(name(schema));
  node->ns = ns(schema).data();
  extra(*node).schema = schema;
  return node;
}

bool plugin_input::fill(yfw_node_t &to, const yfw_node_t &from, uint32_t inherited) {
  if (omitted_.contains(&from) || errors_.contains(from) || !is_known_node(document_, from, errors_) ||
      !is_readable(from)) {
    return false;
  }
  const uint32_t operation = extra(from).given_operation != no_operation ? extra(from).given_operation : inherited;
  to.tag = arena_.text(from.tag);
  to.ns = from.ns;
  to.operation = operation == no_operation || client_.is_read() ? YFW_OPERATION_MERGE : operation;
  extra(to).schema = extra(from).schema;
  extra(to).source = &from;
  return is_value_leaf(from) ? fill_leaf(to, from, operation) : fill_children(to, from, operation);
}

bool plugin_input::fill_leaf(yfw_node_t &to, const yfw_node_t &from, uint32_t operation) {
  if (client_.is_read()) {
    return true;
  }
  if (is_checked_ && is_key(extra(from).schema)) {
    check_key_operation(from, errors_);
  }
  if (deletes(operation) || operation == no_operation) {
    return operation != no_operation;
  }
  if (!is_checked_) {
    to.value = from.value != nullptr ? arena_.text(from.value) : nullptr;
    return true;
  }
  checked_value checked = document_.check(from);
  if (!checked.ok) {
    errors_.add(from, std::move(checked.rejected));
    return false;
  }
  to.value = arena_.text(checked.canonical);
  return true;
}

bool plugin_input::fill_children(yfw_node_t &to, const yfw_node_t &from, uint32_t operation) {
  const auto given = children(from);
  if (given.empty()) {
    return client_.is_read() || operation != no_operation;
  }
  if (!client_.is_read() && deletes(operation)) {
    check_deleted(from);
    return true;  // with all nodes below
  }
  if (!client_.is_read()) {
    check_children_not_repeated(from, errors_);
  }
  const bool only_values = client_.is_read() && std::all_of(given.begin(), given.end(), [](const yfw_node_t &node) {
                             return is_value_leaf(node) && node.value != nullptr;
                           });
  yfw_node_t *array = arena_.nodes(given.size());
  size_t kept = 0;
  for (const yfw_node_t &node : given) {
    if (client_.is_read() && is_value_leaf(node) && node.value != nullptr) {
      content_matches_.insert(&node);
    }
    if (fill(array[kept], node, inherited_by_children(operation))) {
      extra(array[kept++]).parent = &to;
    } else {
      array[kept] = blank_node();
    }
  }
  if (kept > 0 && !only_values) {
    set_children(to, array, kept);
  }
  return kept > 0;
}

// Nodes below a deleted one have no effect, so operations on them are errors.
void plugin_input::check_deleted(const yfw_node_t &deleted) {
  for (const yfw_node_t &below : children(deleted)) {
    const uint8_t given = extra(below).given_operation;
    if (!is_known_node(document_, below, errors_)) {
      continue;
    }
    if (given != no_operation && !deletes(given)) {
      errors_.add(below, "operation " + in_quotes(operation_word(given)) + " is not allowed inside a deleted node",
                  error_tag::bad_element);
    }
    check_deleted(below);
  }
}

bool plugin_input::is_readable(const yfw_node_t &node) {
  const lysc_node *schema = extra(node).schema;
  if (!is_checked_ || is_config(schema) || client_.operation == client_operation::get) {
    return true;
  }
  errors_.add(node,
              client_.is_read() ? "is operational state, which 'get-config' does not read; use 'get'"
                                : "is operational state, which cannot be edited",
              client_.is_read() ? error_tag::bad_element : error_tag::operation_not_supported);
  return false;
}

}  // namespace yfw
