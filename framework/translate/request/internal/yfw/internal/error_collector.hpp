// The errors of a client's request.
#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "yfw/document.hpp"

namespace yfw {

// Either throws the first error, or collects all: a node with an error is then skipped.
class error_collector {
 public:
  enum class mode { fail_fast, collect_all };

  error_collector(const document &request, mode what) : document_(request), mode_(what) {}

  // Throws a `client_error` at the node's place, or keeps it. Of one node only the first is kept.
  void add(const yfw_node_t &node, const std::string &text, error_tag tag, std::string bad_element = {});
  void add(const yfw_node_t &node, rejected_value rejected);
  void add(const yfw_node_t &node, const client_error &problem);  // wherever its own place is

  // Whether the node has an error.
  bool contains(const yfw_node_t &node) const {
    return nodes_.contains(&node);
  }
  size_t count() const {
    return nodes_.size();
  }

  // Returns and forgets the kept errors, in the order of the document.
  std::vector<client_error> take();

 private:
  const document &document_;
  const mode mode_;
  std::set<const yfw_node_t *> nodes_;
  std::vector<std::pair<uint32_t, client_error>> kept_;  // with the node's offset in the text
};

}  // namespace yfw
