// Properties of client leaves: from the client model to the device and back.
#include <algorithm>

#include "roundtrip_internal.hpp"
#include "yfw/internal/coverage_values.hpp"
#include "yfw/internal/schema_types.hpp"

namespace yfw {
namespace {

const char *default_of(const lysc_node *leaf) {
  const lyd_value *value = is_leaf(leaf) ? as<lysc_node_leaf>(leaf).dflt : nullptr;
  return value == nullptr ? nullptr : lyd_value_get_canonical(as<lysc_node_leaf>(leaf).module->ctx, value);
}

// More than one for a leaf-list.
using read_values = std::vector<std::string>;

std::string values_text(const read_values &values) {
  std::string text;
  for (const std::string &value : values) {
    text += (text.empty() ? "" : ", ") + in_quotes(value);
  }
  return text.empty() ? "nothing" : text;
}

enum class edit_result { applied, rejected };

class client_checks {
 public:
  client_checks(roundtrip_run &run, const lysc_node *leaf)
      : run_(run), leaf_(leaf), steps_(run.steps_to(leaf)), path_(path_text(steps_)) {}

  void check_set_and_delete(const std::string &value) {
    memory_device native(run_.modules);
    ++run_.count(property::set_get).tried;
    if (edit(native, property::set_get, value, YFW_OPERATION_MERGE) != edit_result::applied) {
      return;
    }
    const read_values got = read(native);
    if (got != read_values{run_.modules.check_value(leaf_, value).canonical}) {
      report(property::set_get, value, "reads back " + values_text(got));
    }
    ++run_.count(property::delete_get).tried;
    if (edit(native, property::delete_get, value, YFW_OPERATION_REMOVE) == edit_result::applied) {
      require_absent(property::delete_get, value, read(native));
    }
  }

  // A leaf that was never set, beside another one.
  void check_absent(const std::vector<const lysc_node *> &others) {
    for (const lysc_node *other : others) {
      if (other == leaf_ || is_leaf_list(other)) {
        continue;
      }
      for (const std::string &value : sample_values(run_.modules, other)) {
        if (check_absent_beside(other, value)) {
          return;
        }
      }
    }
  }

 private:
  // False when the other leaf cannot be had.
  bool check_absent_beside(const lysc_node *other, const std::string &value) {
    memory_device native(run_.modules);
    const std::vector<path_step> steps = run_.steps_to(other);
    try {
      (void)run_.service(native).edit_node(path_text(steps), value, YFW_OPERATION_MERGE);
    } catch (const error &) {
      return false;
    }
    ++run_.count(property::absent_get).tried;
    const read_values got = read(native);
    if (is_not_absent(got)) {
      run_.report(property::absent_get, leaf_, {},
                  "reads " + values_text(got) + " when only '" + path(other) + "' is set",
                  text_for(steps, run_.modules, no_operation, value));
    }
    return true;
  }

  edit_result edit(memory_device &native, property which, const std::string &value, uint32_t operation) {
    const bool is_set = operation == YFW_OPERATION_MERGE;
    const bool has_value = is_set || is_leaf_list(leaf_);  // identifies the entry of a leaf-list
    try {
      (void)run_.service(native).edit_node(path_, has_value ? std::optional(value) : std::nullopt, operation);
      return edit_result::applied;
    } catch (const client_error &fault) {
      // An edit that fails although the mapping accepts it, or without a reason, is not a rejection.
      if (fault.tag() == error_tag::operation_failed) {
        report(which, value, (is_set ? "" : "cannot be deleted: ") + fault.text());
      } else {
        ++run_.count(which).rejected;
      }
      return edit_result::rejected;
    }
  }

  read_values read(memory_device &native) const {
    return values_of(run_.service(native).find(path_, client_operation::get_config, content::config).data);
  }

  bool is_not_absent(const read_values &got) const {
    const char *value = default_of(leaf_);
    return !got.empty() && (value == nullptr || got != read_values{value});
  }

  void require_absent(property which, const std::string &value, const read_values &got) {
    if (is_not_absent(got)) {
      report(which, value, "reads " + values_text(got) + " after it was deleted");
    }
  }

  void report(property which, const std::string &value, std::string what) {
    run_.report(which, leaf_, value, std::move(what), text_for(steps_, run_.modules, no_operation, value));
  }

  roundtrip_run &run_;
  const lysc_node *leaf_;
  const std::vector<path_step> steps_;
  const std::string path_;
};

}  // namespace

void check_client_leaf(roundtrip_run &run, const lysc_node *leaf, const std::vector<const lysc_node *> &others) {
  client_checks checks(run, leaf);
  for (const std::string &value : thorough_values(run.modules, leaf)) {
    checks.check_set_and_delete(value);
  }
  checks.check_absent(others);
}

}  // namespace yfw
