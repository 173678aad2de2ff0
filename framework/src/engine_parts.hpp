// What the sources of the engine share.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "yfw/engine.hpp"
#include "yfw/node.hpp"

namespace yfw {

// Copies nodes of a tree into another one, each once and with those above it. A list entry comes with its keys.
class tree_selection {
 public:
  // Of leaves only those of that content; keys come in any case.
  tree_selection(data_tree &to, content wanted) : to_(to), wanted_(wanted) {}

  data_node &add(const data_node &node);
  void add_subtree(const data_node &node);

 private:
  bool is_wanted(const lysc_node *leaf) const;

  data_tree &to_;
  content wanted_;
  std::unordered_map<const data_node *, data_node *> images_;
};

// What the client's filter selects of the data.
data_tree filtered(const data_tree &data, const document &request, const client_request &client, content wanted);

// An XPath expression, understood as far as the way to the data goes.
struct read_xpath {
  std::string qualified;         // with the module's name before each name, as libyang wants it
  std::vector<path_step> steps;  // the plain steps and keys that it begins with; all that it selects is below
  bool is_plain = false;         // nothing follows them
};

// With a manifest, '//' at the top finds nodes of the client's model only, and a name that several modules have there
// means the one that is served. Throws `rpc_error` for names that the modules do not have, and for axes and variables.
read_xpath read_expression(std::string_view xpath, const schema &modules, const manifest *description = nullptr);

// The prefix that the node's module gives itself.
std::string_view module_prefix(const lysc_node *node);

// The nodes of a tree that an expression selects. Throws `rpc_error` with libyang's message when it is wrong.
std::vector<const data_node *> selected_nodes(const data_tree &data, const std::string &qualified_xpath);

// The path of a node of a request, with the keys that it gives.
std::vector<path_step> steps_to(const yfw_node_t &node);

// A tree of one path as JSON, with an operation on its last node unless that is no_operation.
std::string text_for(const std::vector<path_step> &steps, const schema &modules, uint32_t operation = no_operation,
                     const std::optional<std::string> &value = {});

// A request that asks for one path, or, unless that is no_operation, carries out an operation on it. No file has it.
document request_for(const std::vector<path_step> &steps, const schema &modules, uint32_t operation = no_operation,
                     const std::optional<std::string> &value = {});

// A fault of such a request, which has no line that anybody could see.
rpc_error without_line(const rpc_error &fault);

}  // namespace yfw
