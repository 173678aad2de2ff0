// What a mapping does with every leaf of its models, measured by calling the plug-in with trees of one leaf.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/native_request.hpp"
#include "yfw/plugin.hpp"
#include "yfw/progress.hpp"
#include "yfw/schema.hpp"
#include "yfw/trace.hpp"

namespace yfw {

// Of a leaf of the high model all four. Of a native leaf `get` is a reply with all data, `get_config` one with
// configuration only, and the other two are not there.
enum class leaf_operation { get_config, get, set, remove };

enum class mapping_state {
  mapped,               // every value that was tried reaches one path
  mapped_to_several,    // and more than one
  refused_value,        // some of the values do not
  unmapped_with_error,  // none does, and the plug-in says so
  unmapped_silently,    // none does, without a word
  not_probed,           // no value of the leaf's type is known to try
};

// The words that reports use: "get-config", "delete"; "mapped-to-several".
std::string_view to_string(leaf_operation operation);
std::string_view to_string(mapping_state state);

// What a probe caused: a native read, set or delete of a request; a leaf of the high model that a reply reports or,
// since the native leaf is there, no longer reports.
enum class effect_kind { read, set, remove, report, withdraw };

std::string_view to_string(effect_kind kind);

struct probe_effect {
  effect_kind kind;
  const lysc_node *node;
  std::optional<std::string> value;

  bool operator==(const probe_effect &) const = default;
};

struct leaf_probe {
  std::optional<std::string> value;   // what was tried; none in a request that reads or deletes
  std::vector<probe_effect> effects;  // in the order of the plug-in's calls, each once
  std::string refusal;                // why the plug-in does not take it; empty when it does, or says nothing

  bool is_mapped() const {
    return refusal.empty() && !effects.empty();
  }
};

struct coverage_cell {
  leaf_operation operation;
  bool is_allowed;  // by the model: state is not configured, and a key is not deleted
  mapping_state state;
  std::vector<leaf_probe> probes;
  std::string reason;  // why it is not mapped, or not probed; empty for a silence

  bool is_mapped() const {
    return state == mapping_state::mapped || state == mapping_state::mapped_to_several;
  }
  bool is_missing() const {
    return is_allowed && !is_mapped();
  }
  // The distinct nodes that the probes reached, in the order of the calls.
  std::vector<const lysc_node *> targets() const;
};

struct coverage_row {
  const lysc_node *leaf;
  std::vector<coverage_cell> cells;  // by `operation`

  bool is_missing() const;
};

struct coverage {
  std::vector<coverage_row> high;    // leaves that entry points for requests serve, in the order of the modules
  std::vector<coverage_row> native;  // and those for replies
  // The native leaves that a read of everything asks for.
  std::vector<const lysc_node *> asked_for;
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
