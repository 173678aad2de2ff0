// What a native device is asked to set, delete or read.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "yfw.h"
#include "yfw/instance_path.hpp"

namespace yfw {

enum class operation_kind { set, remove, read };

// One path that the plug-in emitted. Schema nodes belong to the schema, the rest to the call.
struct native_operation {
  operation_kind kind;
  std::vector<path_step> steps;
  std::optional<std::string> value;  // of a set; in a read, the key that selects an entry
  uint32_t operation;                // YFW_OPERATION_…, of a set or delete
  const yfw_node_t *source_node;     // the client's node that it was made for, of the request's document; may be null
  uint32_t flag = 0;                 // the last argument of yfw_map_datatree_add_path_flagged

  // `path_text` of its steps.
  std::string path() const {
    return path_text(steps);
  }
};

}  // namespace yfw
