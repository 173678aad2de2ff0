// What is wrong with the nodes of a client's request.
#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "yfw/document.hpp"

namespace yfw {

// Either the first problem ends the work, or all of them are collected: a node that has one is then set aside, and the
// work goes on without it.
class error_collector {
 public:
  enum class mode { fail_fast, collect_all };

  error_collector(const document &request, mode what) : document_(request), mode_(what) {}

  // Throws the problem as `client_error`, or keeps it. Of one node only the first is kept.
  void add(const yfw_node_t &node, const std::string &text, error_tag tag, std::string bad_element = {});
  void add(const yfw_node_t &node, const std::string &text, error_tag tag, rejected_value rejected);

  // Whether the node is set aside.
  bool contains(const yfw_node_t &node) const {
    return nodes_.contains(&node);
  }
  size_t count() const {
    return nodes_.size();
  }

  // All that were kept, in the order of the document.
  std::vector<client_error> take();

 private:
  void add(const yfw_node_t &node, client_error problem);

  const document &document_;
  const mode mode_;
  std::set<const yfw_node_t *> nodes_;
  std::vector<std::pair<uint32_t, client_error>> kept_;  // behind the node's place in the text
};

}  // namespace yfw
