#pragma once

#include "model.hpp"
#include "schema.hpp"

#include <map>

namespace ymapgen {

// Joins the rows of one table with the nodes of its module. What is built must not outlive table and schema.
class joiner {
 public:
  joiner(const table &source, const schema &modules, const lys_module *module)
      : source_(source), modules_(modules), module_(module) {}

  // Joins the rows below the line `parent_at` with the `children` of `parent`: each must have one row, in order. Nodes
  // without a tag are left out. Throws `error`.
  std::vector<node> join(const std::vector<row> &rows, const std::vector<const lysc_node *> &children,
                         const lysc_node *parent, const place &parent_at);

  // Keeps a name part for the node at `path`. Throws `error` when another node has it.
  void claim_part(const std::string &part, const std::string &path, const place &at);

 private:
  node join_one(const row &line, const lysc_node *what);
  node described(const row &line, const lysc_node *what) const;
  void join_children(node &result, const row &line, const lysc_node *what);

  const table &source_;
  const schema &modules_;
  const lys_module *module_;
  std::vector<std::string> ancestors_;  // names, from the top node of the model
  bool is_read_all_ = false;            // of the parent
  std::map<std::string, std::string> paths_by_part_;
};

}  // namespace ymapgen
