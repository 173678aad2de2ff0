// Documents of one leaf, made to be probed with.
#pragma once

#include <optional>
#include <string>

#include "yfw/document.hpp"

namespace yfw {

class one_leaf_document {
 public:
  // A document that holds the leaf without a value, in entries of the lists above it that have sample values as keys.
  // Unless the leaf is itself a key of a list, `without_leaf` leaves it out. Throws `error` when a key has no sample.
  one_leaf_document(const schema &modules, const lysc_node *leaf, bool without_leaf = false);

  document &text() {
    return document_;
  }

  // Gives the leaf a value, or none. The nodes above it stay as they are.
  void set_value(const std::optional<std::string> &value);

  // Gives the leaf an explicit operation, YFW_OPERATION_…
  void set_operation(uint8_t operation);

  // Whether that node of the document is the leaf.
  bool is_leaf_itself(const yfw_node_t *node) const {
    return node == leaf_;
  }

 private:
  document document_;
  yfw_node_t *leaf_;
  std::string value_;
};

}  // namespace yfw
