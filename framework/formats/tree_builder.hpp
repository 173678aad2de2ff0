// Builds the nodes of a document in one pass, in the order in which a text names them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "document_internal.hpp"

namespace yfw {

// What a reader says of a node, a third of the size that the node has in the end.
struct pending_node {
  const char *tag = nullptr;
  const char *ns = nullptr;
  const void *source = nullptr;  // the reader's own handle, or null
  const lysc_node *schema = nullptr;
  uint32_t offset = 0;
  uint8_t given_operation = no_operation;
  const char *value = nullptr;
  std::span<yfw_node_t> children = {};
};

// Open nodes and their finished children wait on one stack; when a node closes, its children become nodes in one array
// of the arena. Depth is held by the nesting limit.
class tree_builder {
 public:
  explicit tree_builder(document::parts &parts) : parts_(parts) {}

  // Begins a child of the open node, or a root. Texts are not copied and must live as long as the document. The node
  // found in the schema is that of the name below the open node, or at the top below an envelope.
  pending_node &open(const char *tag, const char *ns, size_t offset, const void *source = nullptr);
  void close();

  // The innermost open node; the reference holds until the next `open`.
  pending_node &current();

  bool is_open() const {
    return !open_.empty();
  }

  // The finished children of the innermost open node, or the finished roots.
  std::span<pending_node> finished();

  // What the schema has for that name below the innermost open node, or null.
  const lysc_node *schema_of(std::string_view tag, std::string_view ns) const;

  // Moves the finished roots into the document.
  void finish();

  // Throws `error` with the path of the innermost open node.
  [[noreturn]] void fail(size_t offset, const std::string &text);

 private:
  const lysc_node *expected(const char *tag, const char *ns) const;
  std::span<yfw_node_t> finished_nodes(size_t first);

  document::parts &parts_;
  std::vector<pending_node> pending_;
  std::vector<size_t> open_;  // indices into pending_
  size_t count_ = 0;          // of all nodes
};

// "'erase' is not an operation, which are 'merge', …"
std::string not_an_operation(std::string_view word);

}  // namespace yfw
