// A table joined with its YANG module: everything that the writers need to know, checked.
#pragma once

#include "schema.hpp"
#include "table.hpp"

#include <string>
#include <vector>

namespace ymapgen {

enum class node_kind { container, list, leaf };

// A path that a leaf mapping adds, with the namespace of its last node and the flag of that node's module.
struct target_path {
  std::string path;
  std::string ns;
  unsigned flag = 1;
};

struct node {
  std::string name;
  std::string path;  // in the schema, from its root, without prefixes
  std::string part;  // path part of its function names
  node_kind kind = node_kind::leaf;
  ymapgen::action action = action::ignore;
  bool is_config = true;
  bool is_read_all = false;  // matched only in requests with operation 10; so is everything below
  bool is_twice = false;
  bool is_replaced = false;
  bool has_hook_by_hand = false;
  std::vector<target_path> targets;
  std::string translator;  // empty: the value is passed on as it is
  std::vector<node> children;
};

struct model {
  std::string stem;    // of file names: "ymap_{plug-in}_{module}"
  std::string prefix;  // of function names: "ymap_{direction}_{plug-in}_{module}"
  std::string module;
  std::string revision;  // "module@revision" of the module, or only its name when it has none
  std::string ns;
  std::string table;      // name of the table, without folder
  std::string augmented;  // name part of the node that the module augments; empty: it has a container of its own
  ymapgen::direction direction = direction::xo;
  std::vector<std::string> includes;
  std::string wanted;
  std::vector<node> tops;  // without those that have no tag
};

// Reads the modules that the table names from `folders`, joins them, and checks that each node has one line, in order.
// Throws `error`.
model build_model(const table &source, const std::vector<std::string> &folders);

// The same with modules that may have been loaded before, for another table. Loads what is missing.
model build_model(const table &source, schema &modules);

}  // namespace ymapgen
