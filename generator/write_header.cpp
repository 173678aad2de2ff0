#include "writers.hpp"

#include <functional>

namespace ymapgen {
namespace {

void for_each(const std::vector<node> &nodes, const std::function<void(const node &)> &visit) {
  for (const node &next : nodes) {
    visit(next);
    for_each(next.children, visit);
  }
}

bool is_inner(const node &what) {
  return what.kind != node_kind::leaf;
}

void write_entry(emitter &out, const model &source) {
  out.put("\n// What the framework calls.\n");
  if (source.augmented.empty()) {
    out.put("ymap_node_function $model$_lvla_$part$;\n", {{"part", source.tops.front().part}});
  } else {
    out.put("ymap_node_function $model$_augment_lvla_$augmented$;\n", {{"augmented", source.augmented}});
  }
}

void declare_callback(emitter &out, const node &what) {
  out.put("ymap_$shape$_function $model$_$kind$_lvla_$part$;\n",
          {{"shape", what.kind == node_kind::container ? "container" : "node"},
           {"kind", callback_kind(what)},
           {"part", what.part}});
}

void declare_hook(emitter &out, const std::string &part) {
  out.put("ymap_node_function $model$_lvla_$part$_parse_augments;\n", {{"part", part}});
}

// What generated code relies on, in the order of the nodes; empty when there is nothing.
std::string hand_written(const model &source) {
  emitter out({{"model", source.prefix}});
  for_each(source.tops, [&out](const node &next) {
    if (next.action == action::manual) {
      out.put("ymap_node_function $model$_man_leaf_lvla_$part$;\n", {{"part", next.part}});
    }
    if (next.action == action::by_hand || next.is_replaced) {
      declare_callback(out, next);
    }
    if (next.has_hook_by_hand) {
      declare_hook(out, next.part);
    }
  });
  return out.text();
}

void write_bodies(emitter &out, const model &source) {
  out.put("\n// Generated bodies.\n");
  for_each(source.tops, [&out](const node &next) {
    if (has_body(next)) {
      out.put("ymap_node_function __$model$_leaf_lvla_$part$;\n", {{"part", next.part}});
    }
  });
  const auto declare = [&out](const std::string &part) {
    out.put("ymap_node_function __$model$_lvla_$part$_parse_augments;\n", {{"part", part}});
  };
  if (!source.augmented.empty()) {
    declare(source.augmented);
  }
  for_each(source.tops, [&declare](const node &next) {
    if (is_inner(next)) {
      declare(next.part);
    }
  });
}

void write_plain_names(emitter &out, const model &source) {
  out.put("\n// Plain names, which the walkers call: each is a body, or the no-op of its kind, under a weak name.\n");
  for_each(source.tops, [&out](const node &next) {
    if (next.action != action::by_hand && !next.is_replaced) {
      declare_callback(out, next);
    }
  });
  if (!source.augmented.empty()) {
    declare_hook(out, source.augmented);
  }
  for_each(source.tops, [&out](const node &next) {
    if (is_inner(next) && !next.has_hook_by_hand) {
      declare_hook(out, next.part);
    }
  });
}

}  // namespace

std::string header_text(const model &source) {
  emitter out = begin_file(source);
  out.put(R"(//
// The functions that map $module$.
#pragma once

#include "ymap_generated.h"

#pragma GCC visibility push(default)
extern "C" {
)",
          {{"module", source.module}});
  write_entry(out, source);
  const std::string by_hand = hand_written(source);
  if (!by_hand.empty()) {
    out.put("\n// Written by hand. Walkers and generated bodies call them.\n" + by_hand);
  }
  out.put(R"(
// No-op callbacks.
ymap_node_function $model$_duck_map_list;
ymap_node_function $model$_duck_map_leaf;
ymap_container_function $model$_duck_map_container;
)");
  write_bodies(out, source);
  write_plain_names(out, source);
  out.put(R"(
}  // extern "C"
#pragma GCC visibility pop
)");
  return out.text();
}

}  // namespace ymapgen
