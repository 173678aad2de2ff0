// The input trees of a plug-in for a client's request. A plug-in changes the nodes that it walks, so it gets copies;
// each copy refers to its source, the client's node.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "yfw/client_request.hpp"
#include "yfw/document.hpp"
#include "yfw/internal/error_collector.hpp"
#include "yfw/node.hpp"

namespace yfw {

class plugin_input {
 public:
  // With `is_checked` false, values and what may be edited are not checked.
  plugin_input(const document &request, const client_request &client, bool is_checked, error_collector &errors)
      : document_(request), client_(client), is_checked_(is_checked), errors_(errors) {}

  // A copy of `from` and what is below it. For reads, leaves have no values, and a container that holds only values is
  // read as a whole. For writes, operations are inherited (RFC 6241, section 7.2) from `inherited`, a deleted container
  // has no children, and leaves without operation are omitted, as are nodes in `omitted` and those with errors. Null
  // when nothing is left to walk. Reports as errors data that the modules do not have, and values and operations that
  // they do not allow.
  yfw_node_t *copy(const yfw_node_t &from, uint32_t inherited, const std::set<const yfw_node_t *> &omitted);

  // A node without children and without a source, or a list entry without known keys.
  yfw_node_t *placeholder(const lysc_node *schema);

  // The client's node that was copied, or null.
  static const yfw_node_t *source_node(const yfw_node_t &copy) {
    return static_cast<const yfw_node_t *>(extra(copy).source);
  }

  // The content match nodes of reads (RFC 6241, section 6.2.5), which the native request cannot carry.
  const std::set<const yfw_node_t *> &content_matches() const {
    return content_matches_;
  }

 private:
  bool fill(yfw_node_t &to, const yfw_node_t &from, uint32_t inherited);
  bool fill_leaf(yfw_node_t &to, const yfw_node_t &from, uint32_t operation);
  bool fill_children(yfw_node_t &to, const yfw_node_t &from, uint32_t operation);
  void check_deleted(const yfw_node_t &deleted);
  bool is_readable(const yfw_node_t &node);

  const document &document_;
  const client_request &client_;
  const bool is_checked_;
  error_collector &errors_;
  node_arena arena_;
  std::set<const yfw_node_t *> omitted_;
  std::set<const yfw_node_t *> content_matches_;
};

// Whether the modules have such a node there, of its kind. Otherwise reports an error, with the nearest name.
bool is_known_node(const document &request, const yfw_node_t &node, error_collector &errors);

// Reports an operation on a key, which belongs on the list entry.
void check_key_operation(const yfw_node_t &key, error_collector &errors);

// Reports siblings that are given twice: RFC 7950, section 7.6 ff., allows one each.
void check_not_repeated(const std::vector<const yfw_node_t *> &siblings, error_collector &errors);
void check_children_not_repeated(const yfw_node_t &parent, error_collector &errors);

}  // namespace yfw
