// The output of a client request: each emitted native path becomes a native operation.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "yfw/internal/context.hpp"
#include "yfw/internal/schema_steps.hpp"
#include "yfw/native_request.hpp"

namespace yfw {

// A native operation as the plug-in emitted it. The plug-in may still change the operation of `node` afterwards.
struct recorded_call {
  yfw_node_t node;  // the output node that the plug-in may get hold of
  native_operation call;
  compared_texts compared;  // from which the source node is found
  bool value_lost;          // neither a set nor a delete: the value is not mapped
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
