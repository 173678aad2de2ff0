#include "mapping_name.hpp"

#include <algorithm>

namespace yfw {
namespace {

struct marker {
  std::string_view text;
  mapping_kind kind;
};

constexpr marker markers[] = {
    {"_man_leaf_lvla_", mapping_kind::custom_leaf},
    {"_leaf_lvla_", mapping_kind::leaf},
    {"_cont_lvla_", mapping_kind::container},
    {"_list_lvla_", mapping_kind::list},
    {"_augment_lvla_", mapping_kind::entry},
    {"_duck_map_", mapping_kind::no_op},
    {"_lvla_", mapping_kind::entry},
};
constexpr std::string_view hook_ending = "_parse_augments";

bool is_squeezed(std::string_view text) {
  return !text.empty() &&
         std::ranges::all_of(text, [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_'; });
}

}  // namespace

std::optional<mapping_name> parse_mapping_name(std::string_view name) {
  mapping_name result{};
  result.is_body = name.starts_with("__");
  name.remove_prefix(result.is_body ? 2 : 0);
  if (!name.starts_with("ymap_ox_") && !name.starts_with("ymap_xo_")) {
    return std::nullopt;
  }
  result.dir = name.starts_with("ymap_ox_") ? direction::ox : direction::xo;
  name.remove_prefix(8);
  // The first of them: the later ones may be parts of it.
  const auto *first = std::ranges::min_element(markers, {}, [&](const marker &each) { return name.find(each.text); });
  const size_t at = name.find(first->text);
  const size_t split = at == std::string_view::npos ? at : name.substr(0, at).rfind('_');
  if (split == std::string_view::npos) {
    return std::nullopt;
  }
  result.plugin = name.substr(0, split);
  result.module = name.substr(split + 1, at - split - 1);
  result.kind = first->kind;
  std::string_view path = name.substr(at + first->text.size());
  if (first->text == "_lvla_" && path.ends_with(hook_ending)) {
    result.kind = mapping_kind::hook;
    path.remove_suffix(hook_ending.size());
  }
  result.path = path;
  return is_squeezed(result.plugin) && is_squeezed(result.module) && is_squeezed(path) ? std::optional(result)
                                                                                       : std::nullopt;
}

std::string_view to_string(mapping_kind kind) {
  switch (kind) {
    case mapping_kind::leaf:
      return "leaf";
    case mapping_kind::container:
      return "container";
    case mapping_kind::list:
      return "list";
    case mapping_kind::hook:
      return "augment hook";
    case mapping_kind::custom_leaf:
      return "custom leaf";
    case mapping_kind::no_op:
      return "no-op";
    case mapping_kind::entry:
      break;
  }
  return "entry point";
}

}  // namespace yfw
