#include "model.hpp"

#include "join.hpp"
#include "names.hpp"
#include "schema.hpp"

#include <filesystem>

namespace ymapgen {
namespace {

using node_list = std::vector<const lysc_node *>;

// Collects the nodes of `module` whose parents belong to another module, or that have none.
void find_tops(const node_list &nodes, const lys_module *module, node_list &tops) {
  for (const lysc_node *candidate : nodes) {
    if (candidate->module == module) {
      tops.push_back(candidate);
    } else if ((candidate->nodetype & (LYS_CONTAINER | LYS_LIST)) != 0) {
      find_tops(children_of(candidate), module, tops);
    }
  }
}

// Throws unless the module has one container at the top of its tree, or augments one node.
void expect_one_place(const table &source, const node_list &tops) {
  const std::string module = "module '" + source.module + "' ";
  if (tops.empty()) {
    throw error(source.module_at, module + "has no data nodes");
  }
  const lysc_node *parent = lysc_data_parent(tops.front());
  for (const lysc_node *top : tops) {
    if (lysc_data_parent(top) != parent) {
      throw error(source.module_at, module + "has nodes below '" + path_of(parent) + "' and '" +
                                        path_of(lysc_data_parent(top)) + "': a table serves one place");
    }
  }
  if (parent == nullptr && (tops.size() != 1 || tops.front()->nodetype != LYS_CONTAINER)) {
    throw error(source.module_at,
                module + "has '" + path_of(tops.back()) + "' at its top: it must have one container, or an augment");
  }
}

void add_names(model &result, const table &source, const lys_module *module) {
  const std::string lower = lower_case(source.module);
  result.stem = "ymap_" + source.plug_in + "_" + underscored(lower);
  result.prefix = std::string("ymap_") + word_of(source.direction) + "_" + source.plug_in + "_" + squashed(lower);
  result.module = source.module;
  result.revision = source.module + (module->revision != nullptr ? "@" + std::string(module->revision) : "");
  result.ns = module->ns;
  result.table = std::filesystem::path(source.file).filename().string();
  result.direction = source.direction;
  result.includes = source.includes;
  result.wanted = source.wanted;
}

}  // namespace

model build_model(const table &source, const std::vector<std::string> &folders) {
  schema modules(folders);
  return build_model(source, modules);
}

model build_model(const table &source, schema &modules) {
  const lys_module *module = modules.load(source.module, source.module_at);
  for (const target &next : source.targets) {
    modules.load(next.module, next.at);
  }
  node_list tops;
  find_tops(modules.top_nodes(), module, tops);
  expect_one_place(source, tops);

  model result;
  add_names(result, source, module);
  joiner join(source, modules, module);
  const lysc_node *parent = lysc_data_parent(tops.front());
  if (parent != nullptr) {
    result.augmented = underscored(parent->name);
    join.claim_part(result.augmented, path_of(parent), source.module_at);
  }
  result.tops = join.join(source.rows, tops, parent, source.nodes_at);
  return result;
}

}  // namespace ymapgen
