#include "tree_builder.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <memory>

namespace yfw {

yfw_node_t &tree_builder::open(const char *tag, const char *ns, size_t offset, const void *source) {
  if (open_.size() >= parts_.limits.nesting) {
    fail(offset, "nested more than " + std::to_string(parts_.limits.nesting) + " deep");
  }
  if (++count_ > parts_.limits.nodes) {
    fail(offset, "more than " + std::to_string(parts_.limits.nodes) + " nodes");
  }
  const lysc_node *schema = schema_of(tag, ns);
  open_.push_back(pending_.size());
  yfw_node_t &node = pending_.emplace_back(blank_node());
  node.tag = tag;
  node.ns = ns;
  extra(node).schema = schema;
  extra(node).source = source;
  extra(node).offset = static_cast<uint32_t>(offset);
  return node;
}

void tree_builder::close() {
  const size_t index = open_.back();
  const size_t count = pending_.size() - index - 1;
  yfw_node_t *settled = settle(index + 1);
  yfw_node_t &node = pending_[index];
  if (count != 0) {
    node.children = settled;
    node.child_count = static_cast<uint32_t>(count);
    node.flags |= YFW_NODE_HAS_CHILDREN;
  }
  open_.pop_back();
}

yfw_node_t &tree_builder::current() {
  return pending_[open_.back()];
}

std::span<yfw_node_t> tree_builder::finished() {
  return std::span(pending_).subspan(open_.empty() ? 0 : open_.back() + 1);
}

static bool is_called(const lysc_node *node, std::string_view tag, std::string_view ns) {
  return (is_leaf(node) || is_container(node) || is_list(node)) && name(node) == tag && yfw::ns(node) == ns;
}

// Devices send nodes in the order of the module: most often the next one is what comes.
const lysc_node *tree_builder::expected(std::string_view tag, std::string_view ns) const {
  const size_t first = open_.empty() ? 0 : open_.back() + 1;
  const lysc_node *before = pending_.size() > first ? extra(pending_.back()).schema : nullptr;
  if (before == nullptr) {
    return nullptr;
  }
  return is_called(before->next, tag, ns) ? before->next : is_called(before, tag, ns) ? before : nullptr;
}

const lysc_node *tree_builder::schema_of(std::string_view tag, std::string_view ns) const {
  if (const lysc_node *found = expected(tag, ns); found != nullptr) {
    return found;
  }
  const lysc_node *above = open_.empty() ? nullptr : extra(pending_[open_.back()]).schema;
  const bool is_reached = above != nullptr || open_.empty() || is_envelope(pending_[open_.back()]);
  return is_reached ? parts_.modules->child(above, ns, tag) : nullptr;
}

void tree_builder::finish() {
  const size_t count = pending_.size();
  parts_.roots = std::span(settle(0), count);
}

// Moves the pending nodes from `first` on to the arena and tells their children where their parents are now.
yfw_node_t *tree_builder::settle(size_t first) {
  const size_t count = pending_.size() - first;
  yfw_node_t *settled = parts_.arena.copies(std::span(pending_).subspan(first));
  pending_.resize(first);
  for (yfw_node_t &node : std::span(settled, count)) {
    for (yfw_node_t &below : children(node)) {
      extra(below).parent = &node;
    }
  }
  return settled;
}

void tree_builder::fail(size_t offset, const std::string &text) {
  std::string path;
  for (size_t i = 0; i < open_.size(); ++i) {
    const size_t end = i + 1 < open_.size() ? open_[i + 1] : pending_.size();
    const auto below = std::span(pending_).subspan(open_[i] + 1, end - open_[i] - 1);
    const bool is_message = is_envelope(pending_[open_[i]]);
    path += is_message ? "" : step_text(pending_[open_[i]], below);
  }
  parts_.fail(offset, text, path);
}

std::string not_an_operation(std::string_view word) {
  return quoted(word) + " is not an operation, which are 'merge', 'replace', 'create', 'delete', 'remove'";
}

}  // namespace yfw
