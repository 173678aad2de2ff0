// The output of a client request: each emitted native path becomes a call.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "yfw/internal/context.hpp"
#include "yfw/internal/schema_steps.hpp"
#include "yfw/native_request.hpp"

namespace yfw {

// A call as it was made. The mapping may still change the operation of `node` after it.
struct recorded_call {
  yfw_node_t node;  // the output node that the plug-in may get hold of
  native_operation call;
  compared_texts compared;  // tells which request node caused it
  bool value_lost;          // neither a set nor a delete: the value has no native counterpart
};

class call_recorder : public output_sink {
 public:
  explicit call_recorder(const schema &modules) : paths_(modules) {}

  uint32_t add_path(context &ctx, std::string_view path, const char *ns, const char *value, yfw_node_t *source,
                    yfw_node_t **created, uint32_t flag) override;
  uint32_t enter_list(context &ctx, yfw_node_t **current_list, std::string_view path, const char *key_value,
                      const char *key_name) override;

  std::deque<recorded_call> &recorded() {
    return recorded_;
  }
  void clear() {
    recorded_.clear();
  }

 private:
  std::vector<path_step> steps_with_keys(const context &ctx, const schema_steps &steps) const;

  path_table paths_;
  std::deque<recorded_call> recorded_;
};

}  // namespace yfw
