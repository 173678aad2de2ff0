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

// Whether what was tried is not enough to tell: samples of an open text say nothing of the texts that a mapping may
// know.
bool is_open(const coverage_cell &cell, const coverage_row &row) {
  const bool is_refused_text = cell.operation == leaf_operation::set && !cell.probes.empty() &&
                               cell.state == mapping_state::unmapped_with_error &&
                               type_of(row.leaf)->basetype == LY_TYPE_STRING;
  return is_refused_text || cell.state == mapping_state::not_probed;
}

// At least in part. Where no value could be tried, or too few, what a delete does tells whether the leaf is known at
// all; where nothing could be tried, nothing is said against it.
bool is_mapped(const coverage_row &row, leaf_operation operation) {
  const coverage_cell *cell = cell_of(row, operation);
  if (cell != nullptr && is_open(*cell, row)) {
    return operation != leaf_operation::set || is_mapped(row, leaf_operation::remove);
  }
  return cell != nullptr && (cell->is_mapped() || cell->state == mapping_state::refused_value);
}

class planner {
 public:
  planner(const coverage &measured, const schema &modules) : measured_(measured), references_(modules) {
    for (const coverage_row &row : measured.high) {
      rows_[row.leaf] = &row;
    }
  }

  deviations plan() {
    std::vector<const lysc_node *> tops;
    for (const coverage_row &row : measured_.high) {
      const lysc_node *top = row.leaf;
      while (top->parent != nullptr) {
        top = top->parent;
      }
      if (std::find(tops.begin(), tops.end(), top) == tops.end()) {
        tops.push_back(top);
      }
    }
    std::for_each(tops.begin(), tops.end(), [&](const lysc_node *top) { state(top, false); });
    refuse_breaking();
    return std::move(result_);
  }

 private:
  struct tally {
    size_t leaves = 0;
    size_t none = 0;
    size_t read_only = 0;
    size_t settable = 0;  // also those of which nothing is known
    bool insists_on_config = false;
  };

  // A leaf that no request names may still come with its container: when what it is made of is asked for then.
  bool comes_with_container(const lysc_node *leaf) const {
    return std::any_of(measured_.native.begin(), measured_.native.end(), [&](const coverage_row &row) {
      const bool is_asked_for = std::any_of(measured_.asked_for.begin(), measured_.asked_for.end(),
                                            [&](const lysc_node *asked) { return is_within(row.leaf, asked); });
      return is_asked_for && std::any_of(row.cells.begin(), row.cells.end(), [&](const coverage_cell &cell) {
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
    counted.insists_on_config = (node->flags & LYS_SET_CONFIG) != 0 && is_config(node);
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
      counted.insists_on_config = counted.insists_on_config || more.insists_on_config;
    }
    return counted;
  }

  // The statements for a node and what is below it. `is_read_only`: one above says already that nothing can be set.
  void state(const lysc_node *node, bool is_read_only) {
    const tally counted = count(node);
    if (counted.leaves > 0 && counted.none == counted.leaves) {
      result_.statements.push_back({deviate_kind::not_supported, node, {}});
      return;
    }
    if (holds_value(node)) {
      state_leaf(node, is_read_only);
      return;
    }
    const bool says_read_only = !is_read_only && is_config(node) &&
                                (node->nodetype & (LYS_CONTAINER | LYS_LIST)) != 0 && counted.settable == 0 &&
                                counted.read_only > 1 && !counted.insists_on_config;
    if (says_read_only) {
      result_.statements.push_back({deviate_kind::read_only, node, {}});
    }
    for (const lysc_node *below = lysc_node_child(node); below != nullptr; below = below->next) {
      state(below, is_read_only || says_read_only);
    }
  }

  void state_leaf(const lysc_node *leaf, bool is_read_only) {
    const auto found = rows_.find(leaf);
    if (found == rows_.end()) {
      return;
    }
    const coverage_row &row = *found->second;
    if (support_of(row) == support::read_only && !is_read_only) {
      result_.statements.push_back({deviate_kind::read_only, leaf, {}});
    }
    if (support_of(row) == support::whole && is_config(leaf)) {
      state_values(row);
    }
    add_remarks(row);
  }

  void state_values(const coverage_row &row) {
    const coverage_cell &set = *cell_of(row, leaf_operation::set);
    if (set.state != mapping_state::refused_value) {
      return;
    }
    std::vector<std::string> taken;
    std::string refused;
    for (const leaf_probe &probe : set.probes) {
      if (probe.is_mapped()) {
        taken.push_back(*probe.value);
      } else {
        refused += (refused.empty() ? "" : ", ") + in_quotes(*probe.value);
      }
    }
    const lysc_type *type =
        is_leaf(row.leaf) ? as<lysc_node_leaf>(row.leaf).type : as<lysc_node_leaflist>(row.leaf).type;
    if (type->basetype == LY_TYPE_ENUM) {
      result_.statements.push_back({deviate_kind::values, row.leaf, taken});
    } else {
      remark(row, "cannot be set to " + refused);  // a deviation cannot narrow other types without another encoding
    }
  }

  void add_remarks(const coverage_row &row) {
    const bool is_set = is_config(row.leaf) && is_mapped(row, leaf_operation::set);
    if (!is_mapped(row, leaf_operation::get)) {
      remark(row, comes_with_container(row.leaf) ? "is read with its container only" : "cannot be read by get");
    }
    if (is_config(row.leaf) && !is_mapped(row, leaf_operation::get_config)) {
      remark(row, "cannot be read by get-config");
    }
    if (is_set && !is_key(row.leaf) && !is_mapped(row, leaf_operation::remove)) {
      remark(row, "cannot be deleted");
    }
    for (const coverage_cell &cell : row.cells) {
      if (cell.is_allowed && cell.state == mapping_state::not_probed) {
        remark(row, std::string(to_string(cell.operation)) + " was not tried: " + cell.reason);
      } else if (cell.is_allowed && is_open(cell, row)) {
        remark(row, "was set to " + in_quotes(*cell.probes.front().value) + " only, which is refused");
      }
    }
  }

  void remark(const coverage_row &row, const std::string &text) {
    result_.remarks.push_back(path(row.leaf) + ": " + text);
  }

  void refuse_breaking() {
    const std::vector<deviation> all = result_.statements;
    std::erase_if(result_.statements, [&](const deviation &each) {
      const std::string why = references_.why_it_breaks(each, all);
      if (!why.empty()) {
        result_.refused.push_back(schema_path(each.target) + ": " + why);
      }
      return !why.empty();
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
