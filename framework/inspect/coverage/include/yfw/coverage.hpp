// What a mapping does with every leaf of its models, measured by calling the plug-in with data trees of one leaf.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/native_request.hpp"
#include "yfw/progress.hpp"
#include "yfw/schema.hpp"

namespace yfw {

class plugin;
class trace_log;

// For a leaf of the client model all four. For a native leaf `get` is a reply with all data and `get_config` one with
// configuration only; there is no `set` and no `remove`.
enum class leaf_operation { get_config, get, set, remove };

enum class mapping_state {
  mapped,      // every sample value reaches one path
  multiple,    // every sample value reaches a path, and more than one path is reached
  partial,     // some sample values reach a path
  rejected,    // none does, and the plug-in reports an error
  unmapped,    // none does, without an error
  not_probed,  // no sample value of the leaf's type is known
};

// The names in reports: "get-config", "delete"; "not-probed".
std::string_view to_string(leaf_operation operation);
std::string_view to_string(mapping_state state);

// The effect of a probe: a native read, set or delete of a request; a client leaf that a reply reports or, because the
// native leaf is present, no longer reports.
enum class effect_kind { read, set, remove, report, retract };

std::string_view to_string(effect_kind kind);

struct probe_effect {
  effect_kind kind;
  const lysc_node *node;
  std::optional<std::string> value;

  bool operator==(const probe_effect &) const = default;
};

struct leaf_probe {
  std::optional<std::string> value;   // the sample value; none in a request that reads or deletes
  std::vector<probe_effect> effects;  // in the order of the plug-in's calls, each once
  std::string rejection;              // the plug-in's error; empty when there is none

  bool is_mapped() const {
    return rejection.empty() && !effects.empty();
  }
};

struct coverage_cell {
  leaf_operation operation;
  bool is_allowed;  // by the model: operational state is not edited, a key is not deleted
  mapping_state state;
  std::vector<leaf_probe> probes;
  std::string reason;  // why it is not mapped, or not probed; empty when no error says so

  bool is_mapped() const {
    return state == mapping_state::mapped || state == mapping_state::multiple;
  }
  bool is_missing() const {
    return is_allowed && !is_mapped();
  }
  // The distinct nodes that the probes reached, in the order of the plug-in's calls.
  std::vector<const lysc_node *> targets() const;
};

struct coverage_row {
  const lysc_node *leaf;
  std::vector<coverage_cell> cells;  // by `operation`

  bool is_missing() const;
};

struct coverage {
  std::vector<coverage_row> client;  // leaves that entry points for requests serve, in the order of the modules
  std::vector<coverage_row> native;  // leaves that entry points for replies serve
  std::vector<const lysc_node *> read_by_default;  // the native leaves that a read without a filter reads
};

// Pairs of a leaf and an operation that the model allows.
struct coverage_share {
  size_t mapped = 0;
  size_t pairs = 0;

  double percent() const {
    return pairs == 0 ? 100.0 : 100.0 * static_cast<double>(mapped) / static_cast<double>(pairs);
  }
  void add(const coverage_cell &cell);
};

coverage_share share_of(const std::vector<coverage_row> &rows);
coverage_share share_of(const std::vector<coverage_row> &rows, leaf_operation operation);

// Measures a mapping with the modules in force. Keys of lists that no entry point serves are not counted; every other
// leaf and leaf-list below the nodes of a served module is, those that other modules augment included.
coverage measure_coverage(const schema &modules, const plugin &mapping, trace_log &log,
                          const progress_report &report = {});

}  // namespace yfw
