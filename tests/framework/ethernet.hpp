// What the tests with the Ethernet mapping share: the shipped modules and the plug-in as built.
#pragma once

#include "yfw/plugin.hpp"
#include "yfw/schema.hpp"

inline const yfw::schema &modules() {
  static const yfw::schema schema = yfw::schema::load({YMAP_TEST_YANG});
  return schema;
}

inline const yfw::plugin &mapping() {
  static const yfw::plugin plugin = yfw::plugin::load(YMAP_TEST_PLUGIN);
  return plugin;
}
