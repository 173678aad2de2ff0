// Data documents: XML (RFC 7950 encoding, RFC 6241 messages) or JSON (RFC 7951, RFC 7952), read into trees of nodes.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "yfw.h"
#include "yfw/error.hpp"
#include "yfw/schema.hpp"

namespace yfw {

class data_tree;

enum class data_format { xml, json };

// What a reader takes before it refuses a document. Within these bounds time grows with the size times its logarithm at
// most, and memory with the size plus about half a kilobyte a node.
struct read_limits {
  size_t bytes = 0xffff0000;    // offsets have 32 bits, so that more is never possible
  size_t nodes = 8'000'000;     // of the finished document
  unsigned nesting = 128;       // nodes inside each other
  unsigned attributes = 64;     // on one element
  unsigned declarations = 256;  // namespace declarations in scope
};

// A document and the nodes read from it. Nodes, their texts and `roots()` live as long as the document and do not move
// with it. Tags and values are memory of one node only: no two nodes share one. Text is kept exactly as written, with
// references and escapes resolved.
//
// XML: prefixes are resolved; an empty element, or a blank one that is no leaf of a text type, has no value.
// JSON: an entry of a list or leaf-list is a node; `null` is a node without value; `[null]` is the value "" (type
// empty); the annotation `ietf-netconf:operation` sets `given_operation`, also of a leaf that is itself not there and
// then is made, without value. Other annotations are ignored when their module is known.
class document {
 public:
  // Tells XML from JSON by the first character that is not blank. `file` is for messages, and so is `first_line`, the
  // line of the file where the text begins. The schema must outlive the document. Throws `error`, with file and line,
  // for text that is not well-formed or not safe: invalid UTF-8, characters that YANG does not allow (RFC 7950,
  // section 9.4), document types and entities (RFC 6241, section 3), undeclared prefixes, elements without namespace,
  // unknown attributes of data, unknown modules, repeated attributes or members, an `operation` without namespace or
  // with an unknown word, and whatever exceeds a limit.
  static document read(std::string text, std::string file, const schema &schema, const read_limits &limits = {},
                       unsigned first_line = 1);

  // The document of a tree that no text tells of: its nodes have no lines, and an identity of another module than its
  // leaf's has the name of that module as prefix, as in JSON. `file` is for messages. With `empty_is_none` a leaf whose
  // value is empty has none, as an empty element. Throws `error` with the path of a value that YANG does not have.
  static document from_tree(const data_tree &tree, std::string file, bool empty_is_none = false);

  document(document &&) noexcept;
  document &operator=(document &&) noexcept;
  ~document();

  data_format format() const;
  const std::string &file() const;
  const schema &modules() const;

  // The root element, or the members of the JSON object.
  std::span<yfw_node_t> roots();
  std::span<const yfw_node_t> roots() const;

  // The line where the node begins, from 1; in JSON the line of its name or of its place in the array.
  unsigned line(const yfw_node_t &node) const;

  // File, line and path of a node of this document.
  place where(const yfw_node_t &node) const;

  // The value of an XML attribute; `ns` is empty for one without prefix. None in JSON.
  std::optional<std::string_view> attribute(const yfw_node_t &node, std::string_view ns, std::string_view name) const;

  // The namespace that `prefix` has at that node: in XML by the declarations in scope ("" is the default namespace), in
  // JSON by taking it as the name of a module.
  std::optional<std::string_view> prefix_namespace(const yfw_node_t &node, std::string_view prefix) const;

  // `schema::check_value` of the node's value with the prefixes in scope; for nodes that are leaves of the schema.
  checked_value check(const yfw_node_t &node) const;

  struct parts;  // of the readers

 private:
  explicit document(std::unique_ptr<parts> inside);
  std::unique_ptr<parts> parts_;
};

}  // namespace yfw
