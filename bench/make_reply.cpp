// Writes a native reply for the benchmarks: COUNT interfaces with all statistics leaves that the module has, as a
// device sends it, in XML or JSON. Usage: make_reply COUNT xml|json > FILE
#include <charconv>
#include <cstdio>
#include <iostream>
#include <string>
#include <string_view>

#include "yfw/node.hpp"
#include "yfw/schema.hpp"
#include "yfw/writer.hpp"

namespace {

constexpr std::string_view list_path = "/ethernet-interface/statistics/statistic";

// A value of seven digits that differs from leaf to leaf and repeats from run to run.
std::string counter_value(size_t entry, size_t leaf) {
  return std::to_string(1'000'000 + (entry * 7919 + leaf * 104'729) % 8'999'993);
}

void add_entry(yfw::data_tree &tree, yfw::data_node &statistics, const lysc_node *list, size_t number) {
  const std::string name = "GigabitEthernet0/" + std::to_string(number / 1000) + "/" + std::to_string(number % 1000);
  const yfw::key_value key{"interface-name", name};
  yfw::data_node &entry = tree.entry(&statistics, yfw::ns(list), yfw::name(list), {&key, 1});
  size_t position = 0;
  for (const lysc_node *leaf : tree.modules().children(list)) {
    if (yfw::name(leaf) != key.first) {
      tree.set_value(tree.at(&entry, leaf), counter_value(number, position));
    }
    ++position;
  }
}

yfw::data_tree reply(const yfw::schema &modules, size_t count) {
  yfw::data_tree tree(modules);
  const lysc_node *list = modules.find(list_path, {});
  yfw::data_node &top = tree.at(nullptr, modules.find("/ethernet-interface", {}));
  yfw::data_node &statistics = tree.at(&top, modules.find("/ethernet-interface/statistics", {}));
  for (size_t i = 0; i < count; ++i) {
    add_entry(tree, statistics, list, i);
  }
  return tree;
}

}  // namespace

int main(int argc, char **argv) {
  const std::string_view count = argc == 3 ? argv[1] : "";
  const std::string_view format = argc == 3 ? argv[2] : "";
  size_t entries = 0;
  const auto read = std::from_chars(count.data(), count.data() + count.size(), entries);
  if (read.ec != std::errc() || read.ptr != count.data() + count.size() || (format != "xml" && format != "json")) {
    std::fputs("usage: make_reply COUNT xml|json > FILE\n", stderr);
    return 2;
  }
  const yfw::schema modules = yfw::schema::load({YMAP_YANG_DIR});
  if (format == "json") {
    write_json(std::cout, reply(modules, entries));
  } else {
    write_xml(std::cout, reply(modules, entries),
              {.wrappers = {{"rpc-reply", yfw::netconf_ns, {{"message-id", "1"}}}, {"data", yfw::netconf_ns}}});
  }
}
