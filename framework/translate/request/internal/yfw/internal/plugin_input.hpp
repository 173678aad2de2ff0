// The trees that are handed to a plug-in for a client's request. A plug-in changes the nodes that it walks, so it gets
// copies; each copy knows the client's node that it stands for.
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
  // With `is_checked` false, values and what may be edited are not looked at: the plug-in gets what is given.
  plugin_input(const document &request, const client_request &client, bool is_checked, error_collector &errors)
      : document_(request), client_(client), is_checked_(is_checked), errors_(errors) {}

  // A copy of `from` and what is below it. For reads, leaves lose their values, and a container in which values are all
  // that is given is asked for as a whole. For writes, operations are inherited (RFC 6241, section 7.2) from
  // `inherited`, a deleted container loses its children, and leaves without operation are left out. Nodes in `left_out`
  // and those that are refused are left out too. Null when nothing is left to walk. Refuses data that the modules do
  // not have, and values and operations that they do not allow.
  yfw_node_t *copy(const yfw_node_t &from, uint32_t inherited, const std::set<const yfw_node_t *> &left_out);

  // A node without children that stands for no node of the client, or for a list entry of which no key is known.
  yfw_node_t *placeholder(const lysc_node *schema);

  // The client's node that a copy stands for, or null.
  static const yfw_node_t *source_node(const yfw_node_t &copy) {
    return static_cast<const yfw_node_t *>(extra(copy).source);
  }

  // Leaves of reads whose values select entries (RFC 6241, section 6.2.5), which the native request cannot do.
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
  std::set<const yfw_node_t *> left_out_;
  std::set<const yfw_node_t *> content_matches_;
};

// Whether the modules have such a node there, and it is what they say. Refuses it if not, and says which name is near.
bool is_known_node(const document &request, const yfw_node_t &node, error_collector &errors);

// What becomes of an entry is said on the entry, not on its key.
void refuse_operation_on_key(const yfw_node_t &key, error_collector &errors);

// Refuses siblings that are the same node as one before them: RFC 7950, section 7.6 ff., allows one each.
void refuse_repeated(const std::vector<const yfw_node_t *> &siblings, error_collector &errors);
void refuse_repeated_children(const yfw_node_t &parent, error_collector &errors);

}  // namespace yfw
