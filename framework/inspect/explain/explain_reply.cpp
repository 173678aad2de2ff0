#include "yfw/internal/explain_internal.hpp"
#include "yfw/path_document.hpp"
#include "yfw/plugin.hpp"
#include "yfw/reply.hpp"

namespace yfw {
namespace {

void add_leaves(const data_node *first, std::vector<reported_leaf> &leaves) {
  each_node(first, [&](const data_node &node) {
    if (node.value && !is_key(node.schema)) {
      leaves.push_back({path(node), std::string(*node.value)});
    }
    add_leaves(node.first_child, leaves);
  });
}

}  // namespace

std::vector<reported_leaf> leaves_of(const data_tree &tree) {
  std::vector<reported_leaf> leaves;
  add_leaves(tree.first(), leaves);
  return leaves;
}

bool has_function(const plugin &mapping, const std::string &name) {
  try {
    return mapping.function<entry_function>(name) != nullptr;
  } catch (const error &) {
    return false;
  }
}

explained_reply explain_reply(const std::vector<path_step> &native, const std::string &value, const schema &modules,
                              const plugin &mapping, trace_log &log) {
  document data = request_for(native, modules, no_operation, value);
  explained_reply result;
  result.value = value;
  result.walk = trace_functions(log, [&](trace_log &own) {
    try {
      reply translated = translate_reply(data, mapping, {}, own);
      result.reported = leaves_of(translated.data);
      result.notes = std::move(translated.notes);
    } catch (const error &refused) {
      result.rejection = refused.text();
    }
  });
  add_untraced(result.walk, native.back().node, [&](const std::string &name) { return has_function(mapping, name); });
  return result;
}

}  // namespace yfw
