// Edits, whole or not at all, by the rules of RFC 6241, section 7.2, for the client's model.
#include <algorithm>
#include <utility>

#include "presence.hpp"
#include "yfw/internal/manifest_nodes.hpp"
#include "yfw/internal/plan_internal.hpp"
#include "yfw/mapping_service.hpp"
#include "yfw/native_request.hpp"
#include "yfw/node.hpp"
#include "yfw/path_document.hpp"
#include "yfw/query.hpp"

namespace yfw {
namespace {

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

void require_edit(const document &request, const client_request &client) {
  if (client.is_read()) {
    throw client_error({request.file()}, "is a read, expected an edit", error_tag::operation_not_supported);
  }
  if (client.error_option == "continue-on-error") {
    throw client_error(
        {request.file()},
        "error-option 'continue-on-error' is not supported: an edit is applied as a whole or not at all, as "
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

// An edit from its translation to its transaction.
class edit_run {
 public:
  edit_run(document &request, const client_request &client, const plugin &mapping, trace_log &log)
      : request_(request),
        client_(client),
        mapping_(mapping),
        log_(log),
        translated_(translate_request(request, client, mapping, log)),
        conditions_(condition_reader().read(client)),
        present_(request, mapping, log) {}

  // Throws `client_error` when the device's data are not what the edit demands.
  void check(const native_device &device) {
    for (const auto *nodes : {&conditions_.absent, &conditions_.present}) {
      for (const yfw_node_t *node : *nodes) {
        present_.add(*node);
      }
    }
    for (const native_operation &operation : translated_.calls) {
      if (sets_by_deleting(operation)) {
        present_.add(*operation.source_node);
      }
    }
    present_.read(device);
    for (const yfw_node_t *node : conditions_.absent) {
      if (present_.holds(*node)) {
        throw client_error(request_.where(*node), "cannot be created: it already exists", error_tag::data_exists);
      }
    }
    for (const yfw_node_t *node : conditions_.present) {
      if (!present_.holds(*node)) {
        const bool is_deleted = extra(*node).given_operation == YFW_OPERATION_DELETE;
        throw client_error(request_.where(*node),
                           is_deleted ? "cannot be deleted: it does not exist; 'remove' accepts that"
                                      : "does not exist, and operation 'none' does not create it",
                           error_tag::data_missing);
      }
    }
  }

  void apply(native_transaction &transaction) const {
    const std::vector<native_operation> operations = native_operations();
    try {
      transaction.apply(operations);
    } catch (const operation_error &fault) {
      const yfw_node_t *source_node = operations[fault.index()].source_node;
      const place where = source_node != nullptr ? request_.where(*source_node) : place{request_.file()};
      throw client_error(where, fault.text(), fault.tag());
    }
  }

  // What causes no native edit, and what the translation noted.
  std::vector<note> notes() const {
    std::vector<note> notes;
    error_collector silent(request_, error_collector::mode::collect_all);
    refuse_silent_ends(translated_, silent);
    for (const client_error &each : silent.take()) {
      notes.push_back({each.where(), note_kind::no_effect, "causes no native edit"});
    }
    notes.insert(notes.end(), translated_.notes.begin(), translated_.notes.end());
    return notes;
  }

 private:
  // Whether a native set stems from a delete: a mapping may delete by setting something.
  bool sets_by_deleting(const native_operation &operation) const {
    return operation.kind == operation_kind::set && operation.source_node != nullptr &&
           deletes(operation_in_force(*operation.source_node, client_.default_operation));
  }

  std::vector<native_operation> native_operations() const {
    std::vector<native_operation> operations;
    for (const yfw_node_t *replaced : conditions_.replaced) {
      add_removals(*replaced, operations);
    }
    for (const native_operation &operation : translated_.calls) {
      // Where nothing is deleted, the device would get an entry for what is set.
      if (!sets_by_deleting(operation) || present_.holds(*operation.source_node)) {
        operations.push_back(relaxed(operation));
      }
    }
    return operations;
  }

  // What removes the content of a replaced node.
  void add_removals(const yfw_node_t &replaced, std::vector<native_operation> &operations) const {
    document removal = request_for(steps_to(replaced), request_.modules(), YFW_OPERATION_REMOVE);
    native_request translated =
        translate_request(removal, bare_request(removal, client_operation::edit), mapping_, log_);
    for (native_operation &operation : translated.calls) {
      operation.source_node = &replaced;
      operations.push_back(relaxed(std::move(operation)));
    }
  }

  document &request_;
  const client_request &client_;
  const plugin &mapping_;
  trace_log &log_;
  const native_request translated_;
  const edit_conditions conditions_;
  presence present_;
};

std::vector<note> notes_on(const document &request, const client_request &client) {
  std::vector<note> notes;
  if (!client.target.empty() && client.target != "running") {
    notes.push_back(
        {{request.file()},
         note_kind::datastore,
         "target " + in_quotes(client.target) + ": the device has one datastore, 'running', which is edited at once",
         client.target});
  }
  if (client.error_option == "stop-on-error") {
    notes.push_back({{request.file()},
                     note_kind::error_option,
                     "error-option 'stop-on-error': nothing is changed if an operation fails",
                     client.error_option});
  }
  return notes;
}

}  // namespace

edit_outcome mapping_service::edit(document &request, const client_request &client, transaction_use use) const {
  require_edit(request, client);
  edit_run run(request, client, mapping_, log_);
  use = client.test_option == "test-only" ? transaction_use::trial : use;
  const std::unique_ptr<native_transaction> transaction = device_.begin(datastore::running, use);
  run.check(device_);
  run.apply(*transaction);
  edit_outcome outcome{transaction->effects().value_or(std::vector<device_change>()), notes_on(request, client)};
  const std::vector<note> notes = run.notes();
  outcome.notes.insert(outcome.notes.end(), notes.begin(), notes.end());
  if (use == transaction_use::commit) {
    transaction->commit();
  }
  return outcome;
}

edit_outcome mapping_service::edit_node(std::string_view path, const std::optional<std::string> &value,
                                        uint32_t operation, transaction_use use) const {
  const schema &modules = device_.modules();
  const std::vector<path_step> steps = read_instance_path(path, modules, client_nodes(mapping_.description(), modules));
  const lysc_node *node = steps.back().node;
  if (is_key(node)) {
    throw client_error({"", 0, std::string(path)}, "is a key, which is created and deleted with its list entry",
                       error_tag::operation_not_supported);
  }
  if (value && !holds_value(node)) {
    throw client_error({"", 0, std::string(path)}, "is not a leaf and has no value", error_tag::bad_element);
  }
  document request = request_for(steps, modules, operation, value);
  return edit(request, bare_request(request, client_operation::edit), use);
}

}  // namespace yfw
