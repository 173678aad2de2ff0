// The reads that an edit depends on.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "yfw/internal/abi_call.hpp"
#include "yfw/internal/error_collector.hpp"
#include "yfw/plan.hpp"

namespace yfw {

// Records the lookups of a plug-in in the device's data.
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

// Adds the reads of the client's nodes on whose presence the client's operations depend.
void add_condition_reads(edit_plan &plan, const schema &modules, const plugin &mapping);

// Reports the leaves and empty nodes of the client's tree without a native operation as errors.
void refuse_silent_ends(const native_request &request, error_collector &errors);

}  // namespace yfw
