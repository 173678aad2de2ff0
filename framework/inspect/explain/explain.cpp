#include "yfw/explain.hpp"
#include "yfw/path_document.hpp"

#include <algorithm>

#include "yfw/internal/coverage_probes.hpp"
#include "yfw/internal/coverage_values.hpp"
#include "yfw/internal/explain_internal.hpp"
#include "yfw/internal/manifest_nodes.hpp"
#include "yfw/mapping_service.hpp"
#include "yfw/memory_device.hpp"
#include "yfw/plugin.hpp"
#include "yfw/trace.hpp"

namespace yfw {
namespace {

bool is_edit(std::string_view operation) {
  return operation != "get";
}

// The path of the innermost list entry, or else of the top-level node.
std::string entry_path(std::vector<path_step> steps) {
  while (steps.size() > 1 && !is_list(steps.back().node)) {
    steps.pop_back();
  }
  return path_text(steps);
}

// Explains requests for one leaf.
class request_explainer {
 public:
  request_explainer(const full_path &target, const schema &modules, const plugin &mapping, trace_log &log)
      : target_(target), modules_(modules), mapping_(mapping), log_(log) {}

  explained_request get() {
    explained_request result = explain_operation("get", no_operation, {});
    if (result.calls.empty()) {
      result.reported_by = reporting_leaves();
    }
    for (const native_operation &call : result.calls) {
      if (!is_key(call.steps.back().node)) {
        add_reported_values(call, result.values);
      }
    }
    return result;
  }

  explained_request set(const std::optional<std::string> &wanted) {
    const std::vector<std::string> samples = wanted ? std::vector{*wanted} : sample_values(modules_, leaf());
    std::vector<value_mapping> values;
    for (const std::string &value : is_config(leaf()) ? values_to_show(wanted) : std::vector<std::string>()) {
      values.push_back(map_value(value));
    }
    const auto accepted =
        std::ranges::find_if(values, [](const value_mapping &each) { return each.rejection.empty(); });
    const std::string value = wanted                     ? *wanted
                              : accepted != values.end() ? accepted->value
                              : samples.empty()          ? ""
                                                         : samples[0];
    explained_request result = explain_operation("set", YFW_OPERATION_MERGE, value);
    result.values = std::move(values);
    if (result.rejection.empty()) {
      memory_device native(modules_);
      result.before = read(native);
      edit(native, value, YFW_OPERATION_MERGE, result);
    }
    return result;
  }

  // Deletes the leaf after a set.
  explained_request remove() {
    explained_request result = explain_operation("delete", YFW_OPERATION_DELETE, {});
    if (!result.rejection.empty()) {
      return result;
    }
    memory_device native(modules_);
    for (const std::string &value : sample_values(modules_, leaf())) {
      if (map_value(value).rejection.empty()) {
        edit(native, value, YFW_OPERATION_MERGE, result);
        break;
      }
    }
    result.before = read(native);
    edit(native, {}, YFW_OPERATION_REMOVE, result);
    return result;
  }

 private:
  const lysc_node *leaf() const {
    return target_.steps.back().node;
  }

  document request_text(uint32_t operation, const std::optional<std::string> &value) const {
    return request_for(target_.steps, modules_, operation, value);
  }

  explained_request explain_operation(std::string_view operation, uint32_t netconf,
                                      const std::optional<std::string> &value) {
    explained_request result;
    result.operation = operation;
    result.value = value;
    const auto kind = is_edit(operation) ? client_operation::edit : client_operation::get;
    document request = request_text(netconf, value);
    native_request native;
    result.rejection = error_of([&] {
      trace_log silent;
      native = translate_request(request, bare_request(request, kind), mapping_, silent);
    });
    for (const note &each : native.notes) {
      result.rejection += (result.rejection.empty() ? "" : "; ") + one_line(each.text);
    }
    if (is_edit(operation) && !is_config(leaf())) {
      return result;
    }
    document again = request_text(netconf, value);
    probe_outcome outcome;
    (void)error_of([&] {
      result.walk = trace_functions(
          log_, [&](trace_log &own) { outcome = probe_request(again, bare_request(again, kind), mapping_, own); });
    });
    add_untraced(result.walk, leaf(), [&](const std::string &name) { return has_function(mapping_, name); });
    result.answer = result.rejection.empty() ? "" : answer_text(outcome);
    result.calls = result.rejection.empty() ? std::move(native.calls) : std::move(outcome.calls);
    for (native_operation &call : result.calls) {
      call.source_node = nullptr;
    }
    return result;
  }

  template <typename work_t>
  static std::string error_of(const work_t &work) {
    try {
      work();
    } catch (const error &failure) {
      return failure.text();
    }
    return {};
  }

  // The native leaves that replies report the leaf from.
  std::vector<std::string> reporting_leaves() const {
    trace_log silent;
    std::vector<std::string> found;
    for (const coverage_row &row : measure_coverage(modules_, mapping_, silent).native) {
      const auto targets = row.cells[static_cast<size_t>(leaf_operation::get)].targets();
      if (std::ranges::find(targets, leaf()) != targets.end()) {
        found.push_back(path(row.leaf));
      }
    }
    return found;
  }

  std::vector<std::string> values_to_show(const std::optional<std::string> &wanted) const {
    std::vector<std::string> values = sample_values(modules_, leaf());
    if (wanted && std::ranges::find(values, *wanted) == values.end()) {
      // Beside a given value, samples of a string type are of no use.
      const bool is_open = modules_.allowed_values(leaf()).empty();
      values = is_open ? std::vector{*wanted} : values;
    }
    return values;
  }

  value_mapping map_value(const std::string &value) {
    value_mapping result{value, {}, {}};
    document request = request_text(YFW_OPERATION_MERGE, value);
    trace_log silent;
    try {
      const native_request native =
          translate_request(request, bare_request(request, client_operation::edit), mapping_, silent);
      for (const native_operation &call : native.calls) {
        const std::string name(yfw::name(call.steps.back().node));
        result.results.push_back(call.value ? *call.value : "no " + name);
      }
    } catch (const client_error &refused) {
      const rejected_value *rejected = refused.rejected();
      result.rejection = rejected == nullptr                                 ? refused.text()
                         : rejected->fault == rejected_value::kind::unmapped ? "unmapped"
                                                                             : rejected->without_value();
    } catch (const error &refused) {
      result.rejection = refused.text();
    }
    return result;
  }

  // Adds the values of the leaf for sample values of the native one.
  void add_reported_values(const native_operation &read, std::vector<value_mapping> &values) {
    for (const std::string &value : sample_values(modules_, read.steps.back().node)) {
      trace_log silent;
      const explained_reply reply = explain_reply(read.steps, value, modules_, mapping_, silent);
      value_mapping &added = values.emplace_back(value_mapping{value, {}, reply.rejection});
      for (const reported_leaf &each : reply.reported) {
        if (is_target(each)) {
          added.results.push_back(each.value);
        }
      }
      if (added.results.empty() && added.rejection.empty()) {
        added.rejection = reply.notes.empty() ? "reports nothing" : one_line(reply.notes.front().text);
      }
    }
  }

  bool is_target(const reported_leaf &each) const {
    return same_path(each.path, path_text(target_.steps));
  }

  // The two forms differ in their quotes only.
  static bool same_path(std::string first, std::string second) {
    std::ranges::replace(first, '"', '\'');
    std::ranges::replace(second, '"', '\'');
    return first == second;
  }

  void edit(memory_device &native, const std::optional<std::string> &value, uint32_t operation,
            explained_request &result) {
    trace_log silent;
    result.rejection = error_of([&] {
      (void)mapping_service(mapping_, native, silent).edit_node(path_text(target_.steps), value, operation);
      result.after = read(native);
    });
  }

  std::vector<reported_leaf> read(memory_device &native) {
    trace_log silent;
    return leaves_of(mapping_service(mapping_, native, silent)
                         .find(entry_path(target_.steps), client_operation::get, content::all)
                         .data);
  }

  const full_path &target_;
  const schema &modules_;
  const plugin &mapping_;
  trace_log &log_;
};

void require_leaf(const full_path &target, const schema &modules) {
  const lysc_node *node = target.steps.back().node;
  if (holds_value(node)) {
    if (is_key(node)) {
      throw error(in_quotes(path(node)) + " is a key, which is created and deleted with its list entry");
    }
    return;
  }
  std::string below;
  for (const lysc_node *child : modules.children(node)) {
    below += (below.empty() ? "" : ", ") + in_quotes(name(child));
  }
  throw error(in_quotes(path(node)) + " is not a leaf, expected one of " + below);
}

}  // namespace

bool serves_model_of(const manifest &description, direction dir, const lysc_node *node, const schema &modules) {
  while (parent(node) != nullptr) {
    node = parent(node);
  }
  return is_on_the_way(description, dir, node, modules);
}

bool serves_model_of(const manifest &description, const lysc_node *node, const schema &modules) {
  return serves_model_of(description, direction::ox, node, modules) ||
         serves_model_of(description, direction::xo, node, modules);
}

explanation explain(std::string_view path, const explain_options &options, const schema &modules, const plugin &mapping,
                    trace_log &log) {
  const full_path target = complete_path(path, modules, mapping.description());
  require_leaf(target, modules);
  explanation result{path_text(target.steps), target.steps.back().node, target.sample_keys, {}, {}};
  if (serves_model_of(mapping.description(), direction::ox, result.leaf, modules)) {
    request_explainer explainer(target, modules, mapping, log);
    for (const std::string_view operation : options.operations) {
      result.requests.push_back(operation == "get"   ? explainer.get()
                                : operation == "set" ? explainer.set(options.value)
                                                     : explainer.remove());
    }
  } else if (serves_model_of(mapping.description(), direction::xo, result.leaf, modules)) {
    for (const std::string &value : options.value ? std::vector{*options.value} : sample_values(modules, result.leaf)) {
      result.replies.push_back(explain_reply(target.steps, value, modules, mapping, log));
    }
  } else {
    throw error(in_quotes(result.path) + " of module " + in_quotes(module_name(result.leaf)) +
                " belongs to neither model of the plug-in: no entry point serves it");
  }
  return result;
}

}  // namespace yfw
