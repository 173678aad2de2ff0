// Selection of data: subtree filters (RFC 6241, section 6) and XPath expressions (XPath 1.0, evaluated by libyang).
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "yfw/content.hpp"
#include "yfw/data_tree.hpp"
#include "yfw/document.hpp"
#include "yfw/instance_path.hpp"

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

// A copy of all data of that content.
data_tree selected_content(const data_tree &data, content wanted);

// What a client's subtree filter, top-level nodes of `request`, selects of the data.
data_tree filtered(const data_tree &data, const document &request, std::span<yfw_node_t *const> filter, content wanted);

// An XPath expression, with the steps that lead to its data.
struct read_xpath {
  std::string qualified;         // with the module's name before each name, as libyang wants it
  std::vector<path_step> steps;  // the plain steps and keys that it begins with; all that it selects is below
};

// Names may stand without prefix, or with the name or prefix of a module. '//' at the top finds nodes of the client's
// model only, and a name that several modules have there means the one of that model. Throws `client_error` for names
// that the modules do not have, and for axes and variables.
read_xpath read_expression(std::string_view xpath, const schema &modules, const client_node_test &is_clients = {});

// The nodes of a tree that an expression selects. Throws `client_error` with libyang's message when it is wrong.
std::vector<const data_node *> selected_nodes(const data_tree &data, const std::string &qualified_xpath);

}  // namespace yfw
