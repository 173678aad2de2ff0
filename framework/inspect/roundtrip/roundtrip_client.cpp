// From the client's model to the device and back.
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

// Those of a leaf-list may be several.
using read_values = std::vector<std::string>;

std::string told(const read_values &values) {
  std::string text;
  for (const std::string &value : values) {
    text += (text.empty() ? "" : ", ") + in_quotes(value);
  }
  return text.empty() ? "nothing" : text;
}

enum class edit_end { done, refused };

class client_checks {
 public:
  client_checks(law_bench &bench, const lysc_node *leaf)
      : bench_(bench), leaf_(leaf), steps_(bench.steps_to(leaf)), path_(path_text(steps_)) {}

  void set_and_delete(const std::string &value) {
    memory_device native(bench_.modules);
    ++bench_.count(law::set_get).tried;
    if (edit(native, law::set_get, value, YFW_OPERATION_MERGE) != edit_end::done) {
      return;
    }
    const read_values got = read(native);
    if (got != read_values{bench_.modules.check_value(leaf_, value).canonical}) {
      report(law::set_get, value, "reads back " + told(got));
    }
    ++bench_.count(law::delete_get).tried;
    if (edit(native, law::delete_get, value, YFW_OPERATION_REMOVE) == edit_end::done) {
      require_absent(law::delete_get, value, read(native));
    }
  }

  // Beside another leaf.
  void absent(const std::vector<const lysc_node *> &others) {
    for (const lysc_node *other : others) {
      if (other == leaf_ || is_leaf_list(other)) {
        continue;
      }
      for (const std::string &value : sample_values(bench_.modules, other)) {
        if (absent_beside(other, value)) {
          return;
        }
      }
    }
  }

 private:
  // False when the other leaf cannot be had.
  bool absent_beside(const lysc_node *other, const std::string &value) {
    memory_device native(bench_.modules);
    const std::vector<path_step> steps = bench_.steps_to(other);
    try {
      (void)bench_.service(native).edit_node(path_text(steps), value, YFW_OPERATION_MERGE);
    } catch (const error &) {
      return false;
    }
    ++bench_.count(law::absent_get).tried;
    const read_values got = read(native);
    if (is_not_absent(got)) {
      bench_.report(law::absent_get, leaf_, {}, "reads " + told(got) + " where only '" + path(other) + "' is set",
                    text_for(steps, bench_.modules, no_operation, value));
    }
    return true;
  }

  edit_end edit(memory_device &native, law which, const std::string &value, uint32_t operation) {
    const bool is_set = operation == YFW_OPERATION_MERGE;
    const bool has_value = is_set || is_leaf_list(leaf_);  // an entry of a leaf-list is named by its value
    try {
      (void)bench_.service(native).edit_node(path_, has_value ? std::optional(value) : std::nullopt, operation);
      return edit_end::done;
    } catch (const client_error &fault) {
      // What fails though the mapping took it, or without a word why, is no refusal.
      if (fault.tag() == error_tag::operation_failed) {
        report(which, value, (is_set ? "" : "cannot be deleted: ") + fault.text());
      } else {
        ++bench_.count(which).refused;
      }
      return edit_end::refused;
    }
  }

  read_values read(memory_device &native) const {
    return values_of(bench_.service(native).find(path_, client_operation::get_config, content::config).data);
  }

  bool is_not_absent(const read_values &got) const {
    const char *value = default_of(leaf_);
    return !got.empty() && (value == nullptr || got != read_values{value});
  }

  void require_absent(law which, const std::string &value, const read_values &got) {
    if (is_not_absent(got)) {
      report(which, value, "reads " + told(got) + " when it is deleted");
    }
  }

  void report(law which, const std::string &value, std::string what) {
    bench_.report(which, leaf_, value, std::move(what), text_for(steps_, bench_.modules, no_operation, value));
  }

  law_bench &bench_;
  const lysc_node *leaf_;
  const std::vector<path_step> steps_;
  const std::string path_;
};

}  // namespace

void check_client_leaf(law_bench &bench, const lysc_node *leaf, const std::vector<const lysc_node *> &others) {
  client_checks checks(bench, leaf);
  for (const std::string &value : thorough_values(bench.modules, leaf)) {
    checks.set_and_delete(value);
  }
  checks.absent(others);
}

}  // namespace yfw
