// Documents with one leaf, for probes.
#pragma once

#include <optional>
#include <string>

#include "yfw/document.hpp"

namespace yfw {

class one_leaf_document {
 public:
  // A document with the leaf, without a value, in list entries with sample keys. `without_leaf` omits the leaf, unless
  // it is a key. Throws `error` when a key has no sample value.
  one_leaf_document(const schema &modules, const lysc_node *leaf, bool without_leaf = false);

  document &text() {
    return document_;
  }

  // Sets or clears the value of the leaf. The nodes above it are unchanged.
  void set_value(const std::optional<std::string> &value);

  // Sets the edit operation of the leaf, YFW_OPERATION_…
  void set_operation(uint8_t operation);

  // Whether the node of this document is the leaf.
  bool is_leaf_itself(const yfw_node_t *node) const {
    return node == leaf_;
  }

 private:
  document document_;
  yfw_node_t *leaf_;
  std::string value_;
};

}  // namespace yfw
