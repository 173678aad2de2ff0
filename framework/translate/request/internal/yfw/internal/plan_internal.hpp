// What a plan looks at beside the calls.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "yfw/internal/abi_call.hpp"
#include "yfw/internal/error_collector.hpp"
#include "yfw/plan.hpp"

namespace yfw {

// Sees what the plug-in asks of the device's data.
class lookup_observer : public call_observer {
 public:
  uint32_t pass(const abi_call &call, const std::function<uint32_t()> &answer) override;

  std::vector<needed_read> take() {
    return std::move(reads_);
  }

 private:
  std::vector<needed_read> reads_;
  std::unordered_set<std::string> paths_;  // of these
};

// Adds the reads that tell whether a client's nodes are there, as far as the client's operations depend on it.
void add_condition_reads(edit_plan &plan, const schema &modules, const plugin &mapping);

// Refuses the ends of the client's tree that no call was made for.
void refuse_silent_ends(const native_request &request, error_collector &errors);

}  // namespace yfw
