// What the tests of the formats share: the schema of a library, and a compact picture of a tree of nodes.
#pragma once

#include <sstream>
#include <string>

#include "yfw/document.hpp"
#include "yfw/node.hpp"
#include "yfw/schema.hpp"

inline const yfw::schema &library() {
  static const yfw::schema schema = yfw::schema::load({YFW_TEST_DATA "/yang"});
  return schema;
}

// "library{book{title=Emma edition=1} shelf=1}": values after '=', '!' and the operation where one is given, the module
// where it changes, '?' behind nodes that the schema does not know.
inline std::string picture(const yfw_node_t &node, std::string_view outer_ns = "") {
  std::ostringstream out;
  if (node.ns != outer_ns) {
    const std::string_view module = library().module_of_ns(node.ns);
    out << (module.empty() ? node.ns : module) << ':';
  }
  out << node.tag << (yfw::extra(node).schema == nullptr && !yfw::is_envelope(node) ? "?" : "");
  if (yfw::extra(node).given_operation != yfw::no_operation) {
    out << '!' << yfw::operation_word(yfw::extra(node).given_operation);
  }
  if (node.value != nullptr) {
    out << '=' << node.value;
  }
  const char *before = "{";
  for (const yfw_node_t &below : yfw::children(node)) {
    out << before << (yfw::extra(below).parent == &node ? "" : "ORPHAN ") << picture(below, node.ns);
    before = " ";
  }
  out << (yfw::children(node).empty() ? "" : "}");
  return out.str();
}

inline std::string picture(const yfw::document &document) {
  std::string text;
  for (const yfw_node_t &root : document.roots()) {
    text += (text.empty() ? "" : " ") + picture(root);
  }
  return text;
}

// What `act` throws, "" when it throws nothing.
template <typename Act>
std::string thrown_by(Act act) {
  try {
    act();
    return "";
  } catch (const yfw::error &error) {
    return error.what();
  }
}
