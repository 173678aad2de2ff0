#include "yfw/plan.hpp"

#include <algorithm>
#include <set>

#include "yfw/internal/plan_internal.hpp"
#include "yfw/node.hpp"
#include "yfw/path_document.hpp"
#include "yfw/trace.hpp"

namespace yfw {
namespace {

class no_effect_finder {
 public:
  no_effect_finder(const native_request &request, error_collector &errors)
      : default_(request.client.default_operation), errors_(errors) {
    for (const native_operation &call : request.calls) {
      causes_.insert(call.source_node);
    }
  }

  // A key alone stands for its entry.
  void visit(const yfw_node_t &node) {
    if (errors_.contains(node) || causes_.contains(&node)) {
      return;
    }
    bool is_end = true;
    for (const yfw_node_t &below : children(node)) {
      if (!is_key(extra(below).schema)) {
        is_end = false;
        visit(below);
      }
    }
    if (is_end && !has_key_error(node) && operation_in_force(node, default_) != no_operation) {
      errors_.add(node, "is not mapped: no native edit results", error_tag::operation_not_supported);
    }
  }

 private:
  bool has_key_error(const yfw_node_t &node) const {
    return std::ranges::any_of(children(node), [&](const yfw_node_t &key) { return errors_.contains(key); });
  }

  const uint32_t default_;
  error_collector &errors_;
  std::set<const yfw_node_t *> causes_;
};

class condition_reads {
 public:
  condition_reads(edit_plan &plan, const schema &modules, const plugin &mapping)
      : plan_(plan), modules_(modules), mapping_(mapping) {
    for (const needed_read &read : plan.reads) {
      paths_.insert(read.path);
    }
  }

  void visit(const yfw_node_t &node) {
    const lysc_node *schema = extra(node).schema;
    if (schema != nullptr && depends_on_presence(node)) {
      add(node);
    }
    for (const yfw_node_t &below : children(node)) {
      visit(below);
    }
  }

 private:
  bool depends_on_presence(const yfw_node_t &node) const {
    const uint32_t given = extra(node).given_operation;
    const uint32_t default_operation = plan_.request.client.default_operation;
    return given == YFW_OPERATION_CREATE || given == YFW_OPERATION_DELETE ||
           (is_list(extra(node).schema) && operation_in_force(node, default_operation) == no_operation);
  }

  void add(const yfw_node_t &node) {
    try {
      trace_log silent;
      document question = request_for(steps_to(node), modules_);
      client_request asked = bare_request(question, client_operation::get_config);
      for (const native_operation &call : translate_request(question, std::move(asked), mapping_, silent).calls) {
        std::string path = call.path();
        if (paths_.insert(path).second) {
          plan_.reads.push_back({std::move(path), &node});
        }
      }
    } catch (const error &) {
      // What cannot be read cannot be edited either, so it is among the problems.
    }
  }

  edit_plan &plan_;
  std::unordered_set<std::string> paths_;  // of its reads
  const schema &modules_;
  const plugin &mapping_;
};

const char *text_argument(const abi_call &call, size_t index) {
  return std::get<const char *>(call.arguments[index].second);
}

}  // namespace

uint32_t lookup_observer::pass(const abi_call &call, const std::function<uint32_t()> &answer) {
  if (call.id == abi_function::find_list_item) {
    std::string path = text_argument(call, 0);
    path.append("/").append(text_argument(call, 1)).append("/").append(text_argument(call, 2));
    if (paths_.insert(path).second) {
      reads_.push_back({std::move(path), nullptr});
    }
  }
  return answer();
}

void add_condition_reads(edit_plan &plan, const schema &modules, const plugin &mapping) {
  condition_reads reads(plan, modules, mapping);
  for (const yfw_node_t *node : plan.request.client.data) {
    reads.visit(*node);
  }
}

void refuse_silent_ends(const native_request &request, error_collector &errors) {
  no_effect_finder finder(request, errors);
  for (const yfw_node_t *node : request.client.data) {
    finder.visit(*node);
  }
}

const yfw_node_t *whole_source_node(const native_operation &call) {
  const lysc_node *schema = call.source_node != nullptr ? extra(*call.source_node).schema : nullptr;
  return is_container(schema) || is_list(schema) ? call.source_node : nullptr;
}

uint32_t operation_in_force(const yfw_node_t &node, uint32_t default_operation) {
  for (const yfw_node_t *at = &node; at != nullptr; at = extra(*at).parent) {
    if (extra(*at).given_operation != no_operation) {
      return extra(*at).given_operation;
    }
  }
  return default_operation;
}

}  // namespace yfw
