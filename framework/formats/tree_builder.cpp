#include "tree_builder.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <cstring>
#include "yfw/instance_path.hpp"

namespace yfw {

pending_node &tree_builder::open(const char *tag, const char *ns, size_t offset, const void *source) {
  if (open_.size() >= parts_.limits.nesting) {
    fail(offset, "nested more than " + std::to_string(parts_.limits.nesting) + " deep");
  }
  if (++count_ > parts_.limits.nodes) {
    fail(offset, "more than " + std::to_string(parts_.limits.nodes) + " nodes");
  }
  const lysc_node *schema = expected(tag, ns);
  if (schema == nullptr) {
    schema = schema_of(tag, ns);
  }
  open_.push_back(pending_.size());
  // Filled in place: a copy made of what was just written in other widths waits for these writes.
  pending_node &node = pending_.emplace_back();
  node.tag = tag;
  node.ns = ns;
  node.source = source;
  node.schema = schema;
  node.offset = static_cast<uint32_t>(offset);
  return node;
}

void tree_builder::close() {
  const size_t index = open_.back();
  if (pending_.size() > index + 1) {
    pending_[index].children = finished_nodes(index + 1);
  }
  open_.pop_back();
}

pending_node &tree_builder::current() {
  return pending_[open_.back()];
}

std::span<pending_node> tree_builder::finished() {
  return std::span(pending_).subspan(open_.empty() ? 0 : open_.back() + 1);
}

// Devices send nodes in the order of the module: most often the next one is what comes, in the namespace of the one
// before.
const lysc_node *tree_builder::expected(const char *tag, const char *ns) const {
  const size_t first = open_.empty() ? 0 : open_.back() + 1;
  const pending_node *before = pending_.size() > first ? &pending_.back() : nullptr;
  if (before == nullptr || before->schema == nullptr) {
    return nullptr;
  }
  const auto is_called = [&](const lysc_node *node) {
    constexpr unsigned expected_types = LYS_LEAF | LYS_CONTAINER | LYS_LIST;
    return node != nullptr && (node->nodetype & expected_types) != 0 && std::strcmp(node->name, tag) == 0 &&
           ((ns == before->ns && node->module == before->schema->module) || std::strcmp(node->module->ns, ns) == 0);
  };
  const lysc_node *next = before->schema->next;
  return is_called(next) ? next : is_called(before->schema) ? before->schema : nullptr;
}

const lysc_node *tree_builder::schema_of(std::string_view tag, std::string_view ns) const {
  const lysc_node *above = open_.empty() ? nullptr : pending_[open_.back()].schema;
  const bool is_reached = above != nullptr || open_.empty() || is_envelope_ns(pending_[open_.back()].ns);
  return is_reached ? parts_.modules->child(above, ns, tag) : nullptr;
}

void tree_builder::finish() {
  parts_.roots = finished_nodes(0);
}

static void fill(yfw_node_t &node, const pending_node &from) {
  node.tag = from.tag;
  node.ns = from.ns;
  node.value = from.value;
  extra(node).schema = from.schema;
  extra(node).source = from.source;
  extra(node).offset = from.offset;
  extra(node).given_operation = from.given_operation;
  if (!from.children.empty()) {
    node.children = from.children.data();
    node.child_count = static_cast<uint32_t>(from.children.size());
    node.flags |= YFW_NODE_HAS_CHILDREN;
  }
}

// Makes nodes of the pending ones from `first` on and sets the parents of their children.
std::span<yfw_node_t> tree_builder::finished_nodes(size_t first) {
  const std::span settled(parts_.arena.nodes(pending_.size() - first), pending_.size() - first);
  for (size_t i = 0; i < settled.size(); ++i) {
    fill(settled[i], pending_[first + i]);
    for (yfw_node_t &below : pending_[first + i].children) {
      extra(below).parent = &settled[i];
    }
  }
  pending_.resize(first);
  return settled;
}

void tree_builder::fail(size_t offset, const std::string &text) {
  std::vector<yfw_node_t> nodes(pending_.size(), blank_node());
  for (size_t i = 0; i < nodes.size(); ++i) {
    fill(nodes[i], pending_[i]);
  }
  std::string path;
  for (size_t i = 0; i < open_.size(); ++i) {
    const size_t end = i + 1 < open_.size() ? open_[i + 1] : nodes.size();
    const auto below = std::span(nodes).subspan(open_[i] + 1, end - open_[i] - 1);
    path += is_envelope(nodes[open_[i]]) ? "" : step_text(nodes[open_[i]], below);
  }
  parts_.fail(offset, text, path);
}

std::string not_an_operation(std::string_view word) {
  return "invalid operation " + in_quotes(word) + ", expected 'merge', 'replace', 'create', 'delete', 'remove'";
}

}  // namespace yfw
