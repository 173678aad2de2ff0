// Edits, whole or not at all, by the rules of RFC 6241, section 7.2, for the client's model.
#include <algorithm>
#include <utility>

#include "engine_internal.hpp"
#include "yfw/internal/manifest_nodes.hpp"
#include "yfw/internal/plan_internal.hpp"
#include "yfw/node.hpp"

namespace yfw {
namespace {

bool deletes(uint32_t operation) {
  return operation == YFW_OPERATION_DELETE || operation == YFW_OPERATION_REMOVE;
}

// What an edit demands of the data before it, and what it does beside what it says.
struct edit_conditions {
  std::vector<const yfw_node_t *> absent;    // created
  std::vector<const yfw_node_t *> present;   // deleted, or passed through with operation "none"
  std::vector<const yfw_node_t *> replaced;  // containers and list entries whose content goes first
};

class condition_reader {
 public:
  edit_conditions read(const client_request &client) {
    for (const yfw_node_t *node : client.data) {
      visit(*node, client.default_operation);
    }
    return std::move(found_);
  }

 private:
  void visit(const yfw_node_t &node, uint32_t inherited) {
    const uint32_t given = extra(node).given_operation;
    const uint32_t operation = given != no_operation ? given : inherited;
    const lysc_node *schema = extra(node).schema;
    if (given == YFW_OPERATION_CREATE) {
      found_.absent.push_back(&node);
    }
    if (given == YFW_OPERATION_DELETE || (operation == no_operation && is_list(schema))) {
      found_.present.push_back(&node);
    }
    if (operation == YFW_OPERATION_REPLACE && !is_leaf(schema) && !is_leaf_list(schema)) {
      found_.replaced.push_back(&node);
    } else if (!deletes(operation)) {
      visit_below(node, operation);
    }
  }

  void visit_below(const yfw_node_t &node, uint32_t operation) {
    for (const yfw_node_t &below : children(node)) {
      if (!is_key(extra(below).schema)) {
        visit(below, operation);
      }
    }
  }

  edit_conditions found_;
};

const data_node *entry_of(const data_node *first, const yfw_node_t &wanted) {
  for (const data_node *group = first; group != nullptr; group = group->next) {
    for (const data_node *node = group; node != nullptr && group->schema == extra(wanted).schema;
         node = node->next_entry) {
      if (!is_leaf_list(node->schema) || (wanted.value != nullptr && node->value == wanted.value)) {
        return node;
      }
    }
  }
  return nullptr;
}

// Where a request's node stands in an answer that holds no other list entries; null when it is not there.
const data_node *found_in(const data_tree &answer, const yfw_node_t &node) {
  const yfw_node_t *above = extra(node).parent;
  if (above == nullptr || is_envelope(*above)) {
    return entry_of(answer.first(), node);
  }
  const data_node *outer = found_in(answer, *above);
  return outer != nullptr ? entry_of(outer->first_child, node) : nullptr;
}

void require_edit(const document &request, const client_request &client) {
  if (client.is_read()) {
    throw client_error({request.file()}, "reads and does not edit", error_tag::operation_not_supported);
  }
  if (client.error_option == "continue-on-error") {
    throw client_error({request.file()},
                       "error-option 'continue-on-error' is not supported: an edit is done whole or not at all, as "
                       "'rollback-on-error' says",
                       error_tag::operation_not_supported);
  }
}

// What the client's operations demand has been looked at: the native ones must not fail where the mapping makes a
// stricter one of them.
native_operation relaxed(native_operation call) {
  if (call.operation == YFW_OPERATION_CREATE) {
    call.operation = YFW_OPERATION_MERGE;
  } else if (call.operation == YFW_OPERATION_DELETE) {
    call.operation = YFW_OPERATION_REMOVE;
  }
  return call;
}

void apply(device_edit &edit, const native_operation &call, const document &request) {
  try {
    edit.apply(relaxed(call));
  } catch (const client_error &fault) {
    const place where = call.source_node != nullptr ? request.where(*call.source_node) : place{request.file()};
    throw client_error(where, fault.text(), fault.tag());
  }
}

class edit_run {
 public:
  edit_run(const engine &self, device &native, document &request) : self_(self), native_(native), request_(request) {}

  void require(const edit_conditions &conditions) const {
    for (const yfw_node_t *node : conditions.absent) {
      if (is_present(*node)) {
        throw client_error(request_.where(*node), "cannot be created: it is there already", error_tag::data_exists);
      }
    }
    for (const yfw_node_t *node : conditions.present) {
      if (!is_present(*node)) {
        const bool is_deleted = extra(*node).given_operation == YFW_OPERATION_DELETE;
        throw client_error(request_.where(*node),
                           is_deleted ? "cannot be deleted: it is not there; 'remove' would not mind"
                                      : "is not there, and default-operation 'none' does not make it",
                           error_tag::data_missing);
      }
    }
  }

  // Whether a native edit comes of removing what is not there. A mapping may remove by setting something, and the
  // device would make an entry for it.
  bool is_void(const native_operation &call, uint32_t default_operation) const {
    return call.kind == operation_kind::set && call.source_node != nullptr &&
           deletes(operation_in_force(*call.source_node, default_operation)) && !is_present(*call.source_node);
  }

  // The native edits that remove what a replaced node holds.
  std::vector<native_operation> removals(const yfw_node_t &replaced, const plugin &mapping, trace_log &log) const {
    document removal = request_for(steps_to(replaced), native_.modules(), YFW_OPERATION_REMOVE);
    std::vector<native_operation> calls =
        translate_request(removal, bare_request(removal, client_operation::edit), mapping, log).calls;
    for (native_operation &call : calls) {
      call.source_node = &replaced;
    }
    return calls;
  }

 private:
  // Whether the client would read the node's configuration as present.
  bool is_present(const yfw_node_t &node) const {
    document question = request_for(steps_to(node), native_.modules());
    const client_request asked = bare_request(question, client_operation::get_config);
    return found_in(self_.get(native_, question, asked, content::config).data, node) != nullptr;
  }

  const engine &self_;
  device &native_;
  document &request_;
};

std::vector<std::string> notes_on(const document &request, const client_request &client) {
  std::vector<std::string> notes;
  if (!client.target.empty() && client.target != "running") {
    notes.push_back(request.file() + ": target " + in_quotes(client.target) +
                    ": the device has one datastore, 'running', which is edited at once");
  }
  if (client.error_option == "stop-on-error") {
    notes.push_back(request.file() + ": error-option 'stop-on-error': nothing is done when something fails");
  }
  return notes;
}

}  // namespace

edit_outcome engine::edit(device &native, document &request, const client_request &client) const {
  require_edit(request, client);
  const native_request translated = translate_request(request, client, mapping_, log_);
  const edit_conditions conditions = condition_reader().read(client);
  const edit_run run(*this, native, request);
  run.require(conditions);
  device_edit edit(native);
  for (const yfw_node_t *replaced : conditions.replaced) {
    for (const native_operation &call : run.removals(*replaced, mapping_, log_)) {
      apply(edit, call, request);
    }
  }
  for (const native_operation &call : translated.calls) {
    if (!run.is_void(call, client.default_operation)) {
      apply(edit, call, request);
    }
  }
  edit_outcome outcome{edit.changes(), notes_on(request, client)};
  error_collector silent(request, error_collector::mode::collect_all);
  refuse_silent_ends(translated, silent);
  for (const client_error &each : silent.take()) {
    outcome.notes.emplace_back(error(each.where(), "causes no native edit").what());
  }
  outcome.notes.insert(outcome.notes.end(), translated.notes.begin(), translated.notes.end());
  if (client.test_option != "test-only") {
    edit.commit();
  }
  return outcome;
}

edit_outcome engine::edit_node(device &native, std::string_view path, const std::optional<std::string> &value,
                               uint32_t operation) const {
  const std::vector<path_step> steps =
      read_instance_path(path, native.modules(), client_nodes(mapping_.description(), native.modules()));
  const lysc_node *node = steps.back().node;
  if (is_key(node)) {
    throw client_error({"", 0, std::string(path)}, "is a key, which comes and goes with its list entry",
                       error_tag::operation_not_supported);
  }
  if (value && !is_leaf(node) && !is_leaf_list(node)) {
    throw client_error({"", 0, std::string(path)}, "is no leaf and takes no value", error_tag::bad_element);
  }
  try {
    document request = request_for(steps, native.modules(), operation, value);
    return edit(native, request, bare_request(request, client_operation::edit));
  } catch (const client_error &fault) {
    throw without_line(fault);
  }
}

}  // namespace yfw
