// A call of the ABI whose answer depends on the request, as those see it that watch a plug-in's calls or answer them in
// the framework's place. Comparisons and trace calls are not among them: they are pure, or answer nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "yfw.h"

namespace yfw {

// An argument: a text or a node, either of which may be null, or a number.
using abi_argument = std::variant<const char *, const yfw_node_t *, uint32_t>;

// Which call it is; `stub` for those that only stand in for another plug-in.
enum class abi_function {
  add_to_node_hierarchy,
  remove_from_node_hierarchy,
  get_node_info,
  find_list_item,  // yfw_map_get_node_info_mpls_static
  peek_tree_stack,
  add_path,
  enter_list,
  update_current_list,
  add_to_output_list,
  remove_from_output_list,
  stub,
};

struct abi_call {
  abi_function id;
  const char *function;                                          // its exported name
  std::vector<std::pair<const char *, abi_argument>> arguments;  // name and value, in order
  // Where the call leaves what it finds; at most one of them is not null.
  const char **text_out = nullptr;
  yfw_node_t **node_out = nullptr;
  yfw_itree_entry_t **entry_out = nullptr;
};

class call_observer {
 public:
  virtual ~call_observer() = default;

  // Returns the call's status: that of `answer`, which lets the framework do it, or one of its own.
  virtual uint32_t pass(const abi_call &call, const std::function<uint32_t()> &answer) = 0;
};

}  // namespace yfw
