// What the framework keeps inside a `yfw_node_t`, and the arena that holds nodes.
#pragma once

#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <string_view>
#include <vector>

#include "yfw.h"
#include "yfw/namespaces.hpp"

struct lysc_node;

namespace yfw {

inline constexpr uint8_t no_operation = 0xff;

// The framework's own part of a node.
struct node_extra {
  yfw_node_t *parent;       // null for a root
  const lysc_node *schema;  // null for nodes that no module defines: envelopes and unknown data
  const void *source;       // the reader's own handle, or null
  uint32_t offset;          // of the node in the text that it was read from, in bytes
  uint8_t given_operation;  // the explicit `operation` attribute or annotation, YFW_OPERATION_…, or no_operation
};
static_assert(sizeof(node_extra) <= sizeof(yfw_node_t::framework_104));

inline node_extra &extra(yfw_node_t &node) {
  return *std::launder(reinterpret_cast<node_extra *>(node.framework_104));
}
inline const node_extra &extra(const yfw_node_t &node) {
  return *std::launder(reinterpret_cast<const node_extra *>(node.framework_104));
}

// The children, empty when the has-children flag is clear.
inline std::span<yfw_node_t> children(yfw_node_t &node) {
  const bool has_children = (node.flags & YFW_NODE_HAS_CHILDREN) != 0 && node.children != nullptr;
  return has_children ? std::span(node.children, node.child_count) : std::span<yfw_node_t>();
}
inline std::span<const yfw_node_t> children(const yfw_node_t &node) {
  return children(const_cast<yfw_node_t &>(node));
}

// The first child with that tag and namespace, the node's own one when none is given, or null.
yfw_node_t *child(yfw_node_t &node, std::string_view tag);
yfw_node_t *child(yfw_node_t &node, std::string_view tag, std::string_view ns);
const yfw_node_t *child(const yfw_node_t &node, std::string_view tag);
const yfw_node_t *child(const yfw_node_t &node, std::string_view tag, std::string_view ns);

// True for elements of NETCONF and RESTCONF messages, which are no data themselves.
bool is_envelope(const yfw_node_t &node);
bool is_envelope_ns(const char *ns);

// The word of RFC 6241, section 7.2, for YFW_OPERATION_…, and back: no_operation when `word` is none of the five.
std::string_view operation_word(uint32_t operation);
uint8_t operation_number(std::string_view word);

// True for "delete" and "remove".
inline bool deletes(uint32_t operation) {
  return operation == YFW_OPERATION_DELETE || operation == YFW_OPERATION_REMOVE;
}

// A node that is all zero but for `given_operation`, which is no_operation.
yfw_node_t blank_node();

// Memory for nodes and their texts. Both stay where they are until the arena goes; nothing is freed singly.
class node_arena {
 public:
  // `count` adjacent blank nodes; null for 0.
  yfw_node_t *nodes(size_t count);

  // A copy of `text` with a terminating zero.
  char *text(std::string_view text);

 private:
  yfw_node_t *room(size_t count);

  std::vector<std::unique_ptr<std::byte[]>> node_blocks_;
  std::vector<std::unique_ptr<char[]>> text_blocks_;
  size_t nodes_left_ = 0;
  size_t text_left_ = 0;
  std::byte *next_node_ = nullptr;
  char *next_text_ = nullptr;
};

}  // namespace yfw
