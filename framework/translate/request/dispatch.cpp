#include "yfw/internal/dispatch.hpp"

#include <algorithm>
#include <utility>

#include "yfw/internal/manifest_nodes.hpp"

namespace yfw {
namespace {

constexpr uint32_t tolerated_above_entry[] = {YFW_OPERATION_MERGE, YFW_OPERATION_CREATE};

// "/" for the top, where entry points of root containers are.
std::string path_or_top(const lysc_node *node) {
  return node == nullptr ? "/" : path(node);
}

class planner {
 public:
  planner(document &request, const client_request &client, const manifest &description, plugin_input &nodes,
          error_collector &errors)
      : document_(request), client_(client), manifest_(description), nodes_(nodes), errors_(errors) {}

  dispatch_plan plan() {
    if (client_.everything) {
      read_below(nullptr, "everything");
    }
    if (!client_.is_read()) {
      check_not_repeated({client_.data.begin(), client_.data.end()}, errors_);
    }
    for (yfw_node_t *node : client_.data) {
      if (!errors_.contains(*node) && is_known_node(document_, *node, errors_)) {
        place_node(*node, nullptr, client_.default_operation);
      }
    }
    return std::move(plan_);
  }

 private:
  // Dispatches `node`, goes below it, or reports it as unmapped. `above` is its schema parent.
  void place_node(yfw_node_t &node, const lysc_node *above, uint32_t inherited) {
    const lysc_node *schema = extra(node).schema;
    if (const entry_point *entry = entry_for(above, module_name(schema)); entry != nullptr) {
      add({ancestors_, key_, &node, schema, inherited, entry, nullptr});
    } else if (leads_to_entry(schema)) {
      enter(node, schema, inherited);
    } else {
      report_unmapped(node);
    }
  }

  void enter(yfw_node_t &node, const lysc_node *schema, uint32_t inherited) {
    const uint32_t operation = operation_above_entry(node, inherited);
    if (errors_.contains(node)) {
      return;
    }
    yfw_node_t *const outer_key = key_;
    if (!client_.is_read()) {
      check_children_not_repeated(node, errors_);
    }
    if (is_list(schema)) {
      key_ = check_keys(node, schema);
    }
    ancestors_.push_back(&node);
    if (operation == YFW_OPERATION_CREATE) {
      add_defaults(node, schema);
    }
    size_t selections = 0;
    for (yfw_node_t &below : children(node)) {
      if (errors_.contains(below) || !is_known_node(document_, below, errors_)) {
        continue;
      }
      if (!is_key(extra(below).schema)) {
        ++selections;
        place_node(below, schema, operation);
      } else if (client_.is_read() && below.value == nullptr) {
        ++selections;
        add_note(below, note_kind::key_read, "is a key, which every read returns");
      }
    }
    if (selections == 0 && client_.is_read()) {
      read_below(schema, document_.where(node).path);
    }
    ancestors_.pop_back();
    key_ = outer_key;
  }

  // Dispatches whole reads to all entry points below `above`.
  void read_below(const lysc_node *above, const std::string &asked) {
    bool found = false;
    for (const lysc_node *below : document_.modules().children(above)) {
      if (const entry_point *entry = entry_for(above, module_name(below)); entry != nullptr && !is_key(below)) {
        add({ancestors_, key_, nullptr, below, YFW_OPERATION_MERGE, entry, nullptr});
        found = true;
      } else if (leads_to_entry(below)) {
        ancestors_.push_back(nodes_.placeholder(below));
        read_below(below, asked);
        ancestors_.pop_back();
        found = true;
      }
    }
    if (!found) {
      plan_.notes.push_back({{{}, 0, asked}, note_kind::unmapped, "nothing below it is mapped"});
    }
  }

  // A node above an entry point stands for itself only: no plug-in deletes or replaces it. A list entry may be created.
  uint32_t operation_above_entry(const yfw_node_t &node, uint32_t inherited) {
    if (client_.is_read()) {
      return YFW_OPERATION_MERGE;
    }
    const uint32_t given = extra(node).given_operation;
    const uint32_t operation = given != no_operation ? given : inherited;
    const bool tolerated = operation == no_operation ||
                           std::find(std::begin(tolerated_above_entry), std::end(tolerated_above_entry), operation) !=
                               std::end(tolerated_above_entry);
    if (!tolerated || (operation == YFW_OPERATION_CREATE && !is_list(extra(node).schema))) {
      errors_.add(
          node,
          "operation " + in_quotes(operation_word(operation)) + " is not supported here; put it on a mapped node below",
          error_tag::operation_not_supported);
    }
    return operation;
  }

  yfw_node_t *check_keys(yfw_node_t &entry, const lysc_node *list) {
    yfw_node_t *first = nullptr;
    for (const std::string_view name : keys(list)) {
      yfw_node_t *key = child(entry, name);
      if (!client_.is_read() && (key == nullptr || key->value == nullptr)) {
        errors_.add(entry, "key " + in_quotes(name) + " is missing", error_tag::missing_element, std::string(name));
      }
      if (key != nullptr && !client_.is_read()) {
        check_key_operation(*key, errors_);
      }
      if (key != nullptr && key->value != nullptr) {
        if (checked_value checked = document_.check(*key); !checked.ok) {
          errors_.add(*key, std::move(checked.rejected));
        }
        first = first == nullptr ? key : first;
      }
    }
    return first;
  }

  void add_defaults(yfw_node_t &node, const lysc_node *schema) {
    for (const default_function &defaults : manifest_.defaults) {
      if (defaults.dir == direction::ox && defaults.at == path(schema)) {
        add({ancestors_, key_, &node, schema, YFW_OPERATION_CREATE, nullptr, &defaults});
      }
    }
  }

  void report_unmapped(const yfw_node_t &node) {
    const std::string text =
        "is not mapped: no entry point serves module " + in_quotes(module_name(extra(node).schema)) + " here";
    if (client_.is_read()) {
      add_note(node, note_kind::unmapped, text);
    } else {
      errors_.add(node, text, error_tag::operation_not_supported);
    }
  }

  const entry_point *entry_for(const lysc_node *above, std::string_view served_module) const {
    const std::string at = path_or_top(above);
    for (const entry_point &entry : manifest_.entry_points) {
      if (entry.dir == direction::ox && entry.at == at && entry.module == served_module) {
        return &entry;
      }
    }
    return nullptr;
  }

  bool leads_to_entry(const lysc_node *schema) const {
    return is_on_the_way(manifest_, direction::ox, schema, document_.modules());
  }

  void add_note(const yfw_node_t &node, note_kind kind, const std::string &text) {
    plan_.notes.push_back({document_.where(node), kind, text});
  }

  void add(dispatch added) {
    plan_.dispatches.push_back(std::move(added));
  }

  document &document_;
  const client_request &client_;
  const manifest &manifest_;
  plugin_input &nodes_;
  error_collector &errors_;
  dispatch_plan plan_;
  std::vector<yfw_node_t *> ancestors_;
  yfw_node_t *key_ = nullptr;
};

}  // namespace

dispatch_plan plan_dispatch(document &request, const client_request &client, const manifest &description,
                            plugin_input &nodes, error_collector &errors) {
  return planner(request, client, description, nodes, errors).plan();
}

}  // namespace yfw
