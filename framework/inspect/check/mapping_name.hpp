// The naming scheme of a plug-in's exported functions.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "yfw/manifest.hpp"

namespace yfw {

enum class mapping_kind { entry, leaf, container, list, hook, manual_leaf, no_op };

// A name taken apart: [__]ymap_{ox|xo}_{plug-in}_{module}_{kind}_{path}.
struct mapping_name {
  direction dir;
  std::string plugin;
  std::string module;
  mapping_kind kind;
  std::string path;  // "ethernet_state_hwmacaddress"; of a no-op the kind that it stands in for
  bool is_body;      // with the two underscores: a generated body
};

// None for a name that is outside of the scheme.
std::optional<mapping_name> taken_apart(std::string_view name);

// "leaf", for messages.
std::string_view to_string(mapping_kind kind);

}  // namespace yfw
