// The naming scheme of a plug-in's exported functions.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "yfw/manifest.hpp"

namespace yfw {

enum class mapping_kind { entry, leaf, container, list, hook, custom_leaf, no_op };

// The parts of a name: [__]ymap_{ox|xo}_{plug-in}_{module}_{kind}_{path}.
struct mapping_name {
  direction dir;
  std::string plugin;
  std::string module;
  mapping_kind kind;
  std::string path;  // "weather_state_rain"; of a no-op: the kind that it replaces
  bool is_body;      // begins with two underscores: a generated body
};

// None for a name outside the scheme.
std::optional<mapping_name> parse_mapping_name(std::string_view name);

// "leaf", for messages.
std::string_view to_string(mapping_kind kind);

}  // namespace yfw
