#include "yfw/internal/error_collector.hpp"

#include <algorithm>

#include "yfw/node.hpp"

namespace yfw {

void error_collector::add(const yfw_node_t &node, const std::string &text, error_tag tag, std::string bad_element) {
  add(node, client_error({}, text, tag, std::move(bad_element)));
}

void error_collector::add(const yfw_node_t &node, rejected_value rejected) {
  add(node, client_error({}, std::move(rejected)));
}

void error_collector::add(const yfw_node_t &node, const client_error &found) {
  client_error problem = found.at(document_.where(node));
  if (mode_ == mode::fail_fast) {
    throw problem;
  }
  if (nodes_.insert(&node).second) {
    kept_.emplace_back(extra(node).offset, std::move(problem));
  }
}

std::vector<client_error> error_collector::take() {
  std::ranges::stable_sort(kept_, {}, &std::pair<uint32_t, client_error>::first);
  std::vector<client_error> problems;
  for (auto &[offset, problem] : kept_) {
    problems.push_back(std::move(problem));
  }
  kept_.clear();
  return problems;
}

}  // namespace yfw
