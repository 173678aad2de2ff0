#include <algorithm>
#include <map>

#include "deviations_internal.hpp"
#include "yfw/error.hpp"
#include "yfw/internal/schema_types.hpp"

namespace yfw {
namespace {

enum class support { whole, read_only, none };

const coverage_cell *cell_of(const coverage_row &row, leaf_operation operation) {
  const auto found = std::find_if(row.cells.begin(), row.cells.end(),
                                  [&](const coverage_cell &cell) { return cell.operation == operation; });
  return found == row.cells.end() ? nullptr : &*found;
}

// Whether the samples cannot decide: rejected samples of a string say nothing about the strings that a mapping accepts.
bool is_open(const coverage_cell &cell, const coverage_row &row) {
  const bool is_rejected_string = cell.operation == leaf_operation::set && !cell.probes.empty() &&
                                  cell.state == mapping_state::rejected &&
                                  type_of(row.leaf)->basetype == LY_TYPE_STRING;
  return is_rejected_string || cell.state == mapping_state::not_probed;
}

// At least in part. Where the samples cannot decide, a delete shows whether the mapping knows the leaf; what was not
// tried counts as mapped.
bool is_mapped(const coverage_row &row, leaf_operation operation) {
  const coverage_cell *cell = cell_of(row, operation);
  if (cell != nullptr && is_open(*cell, row)) {
    return operation != leaf_operation::set || is_mapped(row, leaf_operation::remove);
  }
  return cell != nullptr && (cell->is_mapped() || cell->state == mapping_state::partial);
}

class planner {
 public:
  planner(const coverage &measured, const schema &modules) : measured_(measured), references_(modules) {
    for (const coverage_row &row : measured.client) {
      rows_[row.leaf] = &row;
    }
  }

  deviations plan() {
    std::vector<const lysc_node *> tops;
    for (const coverage_row &row : measured_.client) {
      const lysc_node *top = row.leaf;
      while (top->parent != nullptr) {
        top = top->parent;
      }
      if (std::find(tops.begin(), tops.end(), top) == tops.end()) {
        tops.push_back(top);
      }
    }
    std::for_each(tops.begin(), tops.end(), [&](const lysc_node *top) { add_statements(top, false); });
    reject_breaking();
    return std::move(result_);
  }

 private:
  struct tally {
    size_t leaves = 0;
    size_t none = 0;
    size_t read_only = 0;
    size_t settable = 0;  // also those that were not measured
    bool has_explicit_config = false;
  };

  // A leaf without a read of its own may still be reported with its container: when a read without a filter reads the
  // native leaf that it comes from.
  bool comes_with_container(const lysc_node *leaf) const {
    return std::any_of(measured_.native.begin(), measured_.native.end(), [&](const coverage_row &row) {
      const bool is_read = std::any_of(measured_.read_by_default.begin(), measured_.read_by_default.end(),
                                       [&](const lysc_node *read) { return is_within(row.leaf, read); });
      return is_read && std::any_of(row.cells.begin(), row.cells.end(), [&](const coverage_cell &cell) {
               const auto targets = cell.targets();
               return std::find(targets.begin(), targets.end(), leaf) != targets.end();
             });
    });
  }

  support support_of(const coverage_row &row) const {
    const bool is_read = is_mapped(row, leaf_operation::get) ||
                         (is_config(row.leaf) && is_mapped(row, leaf_operation::get_config)) ||
                         comes_with_container(row.leaf);
    const bool is_set = is_config(row.leaf) && is_mapped(row, leaf_operation::set);
    return is_set || (is_read && !is_config(row.leaf)) ? support::whole : is_read ? support::read_only : support::none;
  }

  tally count(const lysc_node *node) const {
    tally counted;
    counted.has_explicit_config = (node->flags & LYS_SET_CONFIG) != 0 && is_config(node);
    if (holds_value(node)) {
      const auto row = rows_.find(node);
      const support known = row == rows_.end() ? support::whole : support_of(*row->second);
      counted.leaves = 1;
      counted.none = known == support::none ? 1 : 0;
      counted.read_only = known == support::read_only ? 1 : 0;
      counted.settable = known == support::whole && (is_config(node) || row == rows_.end()) ? 1 : 0;
      return counted;
    }
    for (const lysc_node *below = lysc_node_child(node); below != nullptr; below = below->next) {
      const tally more = count(below);
      counted.leaves += more.leaves;
      counted.none += more.none;
      counted.read_only += more.read_only;
      counted.settable += more.settable;
      counted.has_explicit_config = counted.has_explicit_config || more.has_explicit_config;
    }
    return counted;
  }

  // Adds the statements for a node and those below it. `is_read_only`: a statement above makes it read-only already.
  void add_statements(const lysc_node *node, bool is_read_only) {
    const tally counted = count(node);
    if (counted.leaves > 0 && counted.none == counted.leaves) {
      result_.statements.push_back({deviate_kind::not_supported, node, {}});
      return;
    }
    if (holds_value(node)) {
      add_leaf_statements(node, is_read_only);
      return;
    }
    const bool becomes_read_only = !is_read_only && is_config(node) &&
                                   (node->nodetype & (LYS_CONTAINER | LYS_LIST)) != 0 && counted.settable == 0 &&
                                   counted.read_only > 1 && !counted.has_explicit_config;
    if (becomes_read_only) {
      result_.statements.push_back({deviate_kind::read_only, node, {}});
    }
    for (const lysc_node *below = lysc_node_child(node); below != nullptr; below = below->next) {
      add_statements(below, is_read_only || becomes_read_only);
    }
  }

  void add_leaf_statements(const lysc_node *leaf, bool is_read_only) {
    const auto found = rows_.find(leaf);
    if (found == rows_.end()) {
      return;
    }
    const coverage_row &row = *found->second;
    if (support_of(row) == support::read_only && !is_read_only) {
      result_.statements.push_back({deviate_kind::read_only, leaf, {}});
    }
    if (support_of(row) == support::whole && is_config(leaf)) {
      add_values_statement(row);
    }
    add_remarks(row);
  }

  void add_values_statement(const coverage_row &row) {
    const coverage_cell &set = *cell_of(row, leaf_operation::set);
    if (set.state != mapping_state::partial) {
      return;
    }
    std::vector<std::string> accepted;
    std::string rejected;
    for (const leaf_probe &probe : set.probes) {
      if (probe.is_mapped()) {
        accepted.push_back(*probe.value);
      } else {
        rejected += (rejected.empty() ? "" : ", ") + in_quotes(*probe.value);
      }
    }
    const lysc_type *type =
        is_leaf(row.leaf) ? as<lysc_node_leaf>(row.leaf).type : as<lysc_node_leaflist>(row.leaf).type;
    if (type->basetype == LY_TYPE_ENUM) {
      result_.statements.push_back({deviate_kind::values, row.leaf, accepted});
    } else {
      add_remark(row, "cannot be set to " + rejected);  // a deviation of another type would change its encoding
    }
  }

  void add_remarks(const coverage_row &row) {
    const bool is_set = is_config(row.leaf) && is_mapped(row, leaf_operation::set);
    if (!is_mapped(row, leaf_operation::get)) {
      add_remark(row, comes_with_container(row.leaf) ? "is read only with its container" : "cannot be read by get");
    }
    if (is_config(row.leaf) && !is_mapped(row, leaf_operation::get_config)) {
      add_remark(row, "cannot be read by get-config");
    }
    if (is_set && !is_key(row.leaf) && !is_mapped(row, leaf_operation::remove)) {
      add_remark(row, "cannot be deleted");
    }
    for (const coverage_cell &cell : row.cells) {
      if (cell.is_allowed && cell.state == mapping_state::not_probed) {
        add_remark(row, std::string(to_string(cell.operation)) + " was not tried: " + cell.reason);
      } else if (cell.is_allowed && is_open(cell, row)) {
        add_remark(row, "was set to " + in_quotes(*cell.probes.front().value) + " only, which is rejected");
      }
    }
  }

  void add_remark(const coverage_row &row, const std::string &text) {
    result_.remarks.push_back(path(row.leaf) + ": " + text);
  }

  void reject_breaking() {
    const std::vector<deviation> all = result_.statements;
    std::erase_if(result_.statements, [&](const deviation &each) {
      const std::string conflict = references_.conflict_of(each, all);
      if (!conflict.empty()) {
        result_.rejected.push_back(schema_path(each.target) + ": " + conflict);
      }
      return !conflict.empty();
    });
  }

  const coverage &measured_;
  model_references references_;
  std::map<const lysc_node *, const coverage_row *> rows_;
  deviations result_;
};

}  // namespace

std::string schema_path(const lysc_node *node) {
  return node == nullptr ? "" : schema_path(node->parent) + "/" + node->name;
}

deviations plan_deviations(const coverage &measured, const schema &modules) {
  return planner(measured, modules).plan();
}

}  // namespace yfw
