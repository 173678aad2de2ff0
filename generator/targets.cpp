#include "targets.hpp"

#include <algorithm>
#include <sstream>

namespace ymapgen {
namespace {

using node_list = std::vector<const lysc_node *>;

// The nodes named `name` among `nodes`; the same name may come from several modules.
node_list named(const node_list &nodes, const std::string &name) {
  node_list matches;
  std::copy_if(nodes.begin(), nodes.end(), std::back_inserter(matches),
               [&name](const lysc_node *candidate) { return name == candidate->name; });
  return matches;
}

node_list children_of_all(const node_list &parents) {
  node_list children;
  for (const lysc_node *parent : parents) {
    const node_list more = children_of(parent);
    children.insert(children.end(), more.begin(), more.end());
  }
  return children;
}

const target *target_of(const table &source, const lysc_node *leaf) {
  const auto found = std::find_if(source.targets.begin(), source.targets.end(),
                                  [leaf](const target &candidate) { return candidate.module == leaf->module->name; });
  return found == source.targets.end() ? nullptr : &*found;
}

error no_such_child(const std::string &path, const lysc_node *parent, const std::string &name, const place &at) {
  return {at, "'" + path + "' is no path of the modules: '" + name + "' is not a child of '" + path_of(parent) + "'"};
}

}  // namespace

target_path resolve_target(const schema &modules, const table &source, const std::string &path, const place &at) {
  node_list candidates = modules.top_nodes();
  node_list matches;
  std::istringstream names(path.substr(1));
  for (std::string name; std::getline(names, name, '/'); candidates = children_of_all(matches)) {
    const lysc_node *parent = matches.empty() ? nullptr : matches.front();
    matches = named(candidates, name);
    if (matches.empty()) {
      throw no_such_child(path, parent, name, at);
    }
  }
  for (const lysc_node *leaf : matches) {
    const target *module = target_of(source, leaf);
    if (module != nullptr && (leaf->nodetype & (LYS_LEAF | LYS_LEAFLIST)) != 0) {
      return {path, leaf->module->ns, module->flag};
    }
  }
  throw error(at, "'" + path + "' is not a leaf of a target module: it must be one, of a module with a line 'target'");
}

}  // namespace ymapgen
