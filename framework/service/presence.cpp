#include "presence.hpp"

#include <algorithm>

#include "yfw/client_request.hpp"
#include "yfw/native_request.hpp"
#include "yfw/node.hpp"
#include "yfw/path_document.hpp"
#include "yfw/reply.hpp"

namespace yfw {
namespace {

// Whether something below a node is configuration. List entries without anything but keys and empty containers are
// there by themselves.
bool has_configuration(const data_node &node) {
  if (holds_value(node.schema)) {
    return is_config(node.schema);
  }
  bool is_empty = true;
  for (const data_node *first = node.first_child; first != nullptr; first = first->next) {
    for (const data_node *below = first; below != nullptr; below = below->next_entry) {
      if (!is_key(below->schema)) {
        is_empty = false;
        if (has_configuration(*below)) {
          return true;
        }
      }
    }
  }
  return is_empty;
}

}  // namespace

client_error unreadable(const native_device &device, const error &fault) {
  return {{device.name(), 0, {}}, fault.where().path + ": " + fault.text(), error_tag::operation_failed};
}

void presence::read(const native_device &device) {
  if (nodes_.empty()) {
    return;
  }
  add_paths();
  document question = document::from_tree(asked_, "");
  const native_request translated =
      translate_request(question, bare_request(question, client_operation::get_config), mapping_, log_);
  document native = device.read(translated.calls, datastore::running);
  try {
    found_ = translate_reply(native, mapping_, {.wanted = content::config}, log_).data;
  } catch (const error &fault) {
    throw unreadable(device, fault);
  }
}

// Shallow nodes first: what is below a node that is asked for as a whole comes with it.
void presence::add_paths() {
  std::vector<std::pair<size_t, const yfw_node_t *>> by_depth;
  for (const yfw_node_t *node : nodes_) {
    by_depth.emplace_back(steps_to(*node).size(), node);
  }
  std::ranges::stable_sort(by_depth, {}, &std::pair<size_t, const yfw_node_t *>::first);
  for (const auto &[depth, node] : by_depth) {
    add_path_to(*node);
  }
}

void presence::add_path_to(const yfw_node_t &node) {
  data_node *at = nullptr;
  for (const path_step &step : steps_to(node)) {
    at = &add_step(asked_, at, step);
    if (whole_.contains(at)) {
      return;
    }
  }
  whole_.insert(at);
}

bool presence::holds(const yfw_node_t &node) const {
  const data_node *there = found(node);
  return there != nullptr && has_configuration(*there);
}

const data_node *presence::found(const yfw_node_t &node) const {
  const std::vector<path_step> steps = steps_to(node);
  const data_node *at = nullptr;
  for (const path_step &step : steps) {
    const bool is_entry = is_list(step.node) && !step.keys.empty();
    at = is_entry ? found_.find_entry(at, step.node, step_keys(step)) : found_.find(at, step.node);
    if (at == nullptr) {
      return nullptr;
    }
  }
  if (at != nullptr && is_leaf_list(at->schema)) {
    const checked_value checked = request_.check(node);
    const std::string_view given = node.value != nullptr ? node.value : "";
    const std::string_view value = checked.ok ? checked.canonical : given;
    while (at != nullptr && at->value != value) {
      at = at->next_entry;
    }
  }
  return at;
}

}  // namespace yfw
