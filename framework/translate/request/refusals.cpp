#include "yfw/internal/refusals.hpp"

#include <algorithm>

#include "yfw/node.hpp"

namespace yfw {

void refusals::add(const yfw_node_t &node, const std::string &text, error_tag tag, std::string bad_element) {
  rpc_error problem(document_.where(node), text, tag, std::move(bad_element));
  if (habit_ == habit::throws) {
    throw problem;
  }
  if (nodes_.insert(&node).second) {
    kept_.emplace_back(extra(node).offset, std::move(problem));
  }
}

std::vector<rpc_error> refusals::take() {
  std::ranges::stable_sort(kept_, {}, &std::pair<uint32_t, rpc_error>::first);
  std::vector<rpc_error> problems;
  for (auto &[offset, problem] : kept_) {
    problems.push_back(std::move(problem));
  }
  kept_.clear();
  return problems;
}

}  // namespace yfw
