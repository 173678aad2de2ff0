#include <algorithm>
#include <utility>

#include "document_internal.hpp"
#include "node_values.hpp"
#include "yfw/data_tree.hpp"

namespace yfw {
namespace {

class tree_copier {
 public:
  tree_copier(document::parts &parts, bool empty_is_none) : parts_(parts), empty_is_none_(empty_is_none) {}

  std::span<yfw_node_t> copy_level(const data_node *level, yfw_node_t *parent) {
    const size_t count = count_of(level);
    yfw_node_t *nodes = parts_.arena.nodes(count);
    size_t next = 0;
    each_node(level, [&](const data_node &node) { copy(node, nodes[next++], parent); });
    return {nodes, count};
  }

 private:
  static size_t count_of(const data_node *level) {
    size_t count = 0;
    each_node(level, [&](const data_node & /*node*/) { ++count; });
    return count;
  }

  // Tags and values are texts of this node alone, by which plug-ins' questions are traced to it; namespaces may be the
  // schema's.
  void copy(const data_node &from, yfw_node_t &to, yfw_node_t *parent) {
    to.tag = parts_.arena.text(from.tag);
    to.ns = from.schema != nullptr ? ns(from.schema).data() : parts_.arena.text(from.ns);
    extra(to).parent = parent;
    extra(to).schema = from.schema;
    if (from.operation) {
      extra(to).given_operation = static_cast<uint8_t>(*from.operation);
    }
    if (from.value && !(empty_is_none_ && from.value->empty())) {
      check_text(from);
      const std::string_view module = foreign_module(*parts_.modules, from);
      to.value = module.empty() ? parts_.arena.text(*from.value)
                                : parts_.arena.text(std::string(module) + ":" + std::string(*from.value));
    }
    const std::span<yfw_node_t> below = copy_level(from.first_child, &to);
    if (!below.empty()) {
      to.children = below.data();
      to.child_count = static_cast<uint32_t>(below.size());
      to.flags |= YFW_NODE_HAS_CHILDREN;
    }
  }

  document::parts &parts_;
  const bool empty_is_none_;
};

}  // namespace

document document::from_tree(const data_tree &tree, std::string file, bool empty_is_none) {
  auto inside = std::make_unique<parts>();
  inside->file = std::move(file);
  inside->format = data_format::json;
  inside->modules = &tree.modules();
  inside->first_line = 0;
  inside->roots = tree_copier(*inside, empty_is_none).copy_level(tree.first(), nullptr);
  return document(std::move(inside));
}

}  // namespace yfw
