// What a walk of the plug-in costs over its floor, the same framework calls without the plug-in: traces off.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "eth_namespaces.h"
#include "framework_calls.hpp"
#include "yfw/schema.hpp"
#include "ymap_oc_ethernet_openconfig_if_ethernet.h"
#include "ymap_oc_ethernet_zemlo_quarn_drivers_media_eth_oper.h"

namespace {

using clock_type = std::chrono::steady_clock;

// A request: context, record and output, traces off.
struct request {
  yfw_request_t operation{};
  yfw_request_record_t record{};
  yfw_ctx_t ctx{};
  yfw_node_t out{};

  explicit request(uint32_t number) {
    operation.operation = number;
    record.request = &operation;
    ctx.request = &record;
  }
};

yfw_node_t named(const char *tag, const char *ns, const char *value = nullptr) {
  yfw_node_t node{};
  node.tag = tag;
  node.ns = ns;
  node.value = value;
  return node;
}

void give_children(yfw_node_t &node, std::vector<yfw_node_t> &children) {
  node.children = children.data();
  node.child_count = static_cast<uint32_t>(children.size());
  node.flags |= YFW_NODE_HAS_CHILDREN;
}

// A tree of three levels above the leaves, or less.
struct tree {
  std::vector<yfw_node_t> leaves, entries, middle;
  yfw_node_t root{};
};

// A reply with all statistics leaves of `entries` interfaces, as the module lists them.
void fill_reply(tree &reply, size_t entries, const std::vector<std::string> &names) {
  for (const std::string &name : names) {
    reply.leaves.push_back(named(name.c_str(), ETH_NS_NATIVE_OPER, "4711"));
  }
  for (size_t i = 0; i < entries; ++i) {
    reply.entries.push_back(named("statistic", ETH_NS_NATIVE_OPER));
    give_children(reply.entries.back(), reply.leaves);
  }
  reply.middle.push_back(named("statistics", ETH_NS_NATIVE_OPER));
  give_children(reply.middle.back(), reply.entries);
  reply.root = named("ethernet-interface", ETH_NS_NATIVE_OPER);
  give_children(reply.root, reply.middle);
}

void fill_edit(tree &edit) {
  edit.leaves = {named("mac-address", ETH_NS_OC_ETHERNET, "02:00:5e:10:00:01"),
                 named("auto-negotiate", ETH_NS_OC_ETHERNET, "true"), named("duplex-mode", ETH_NS_OC_ETHERNET, "FULL"),
                 named("port-speed", ETH_NS_OC_ETHERNET, "SPEED_1GB"),
                 named("enable-flow-control", ETH_NS_OC_ETHERNET, "true")};
  edit.entries = {named("config", ETH_NS_OC_ETHERNET)};
  give_children(edit.entries.back(), edit.leaves);
  edit.root = named("ethernet", ETH_NS_OC_ETHERNET);
  give_children(edit.root, edit.entries);
}

using entry_function = uint32_t (*)(yfw_ctx_t *, yfw_node_t *, yfw_node_t *);

// The time that each round of something took.
class timing {
 public:
  template <typename function_t>
  void add(size_t repetitions, const function_t &function) {
    const auto begin = clock_type::now();
    for (size_t i = 0; i < repetitions; ++i) {
      benchmark::DoNotOptimize(function());
    }
    seconds_.push_back(std::chrono::duration<double>(clock_type::now() - begin).count());
  }

  double median() {
    const auto middle = seconds_.begin() + static_cast<std::ptrdiff_t>(seconds_.size() / 2);
    std::nth_element(seconds_.begin(), middle, seconds_.end());
    return *middle;
  }

 private:
  std::vector<double> seconds_;
};

// Alternates walk and floor, so that both see the same machine, and reports the ratio of their medians. The floor's own
// work is shown by two more replays: of the calls sorted by kind, where each branch is foreseen, and of as many records
// that call nothing. What the first takes more than the second is what the calls alone take.
void measure(benchmark::State &state, entry_function entry, uint32_t operation, tree &input) {
  request asked(operation);
  std::vector<bench::call> calls;
  bench::recording = &calls;
  benchmark::DoNotOptimize(entry(&asked.ctx, &input.root, &asked.out));
  bench::recording = nullptr;

  std::vector<bench::call> sorted = calls;
  std::ranges::stable_sort(sorted, {}, &bench::call::kind);
  std::vector<bench::call> silent = calls;
  for (bench::call &each : silent) {
    each.kind = bench::call_kind::none;
  }
  const auto replay = [&](const std::vector<bench::call> &which) {
    return [&] { return bench_replay(&asked.ctx, which.data(), which.size()); };
  };

  const size_t repetitions = std::max<size_t>(1, 20000 / calls.size());
  timing walks, floors, sorted_floors, readings;
  while (state.KeepRunning()) {
    walks.add(repetitions, [&] { return entry(&asked.ctx, &input.root, &asked.out); });
    floors.add(repetitions, replay(calls));
    sorted_floors.add(repetitions, replay(sorted));
    readings.add(repetitions, replay(silent));
  }
  const double scale = 1e9 / static_cast<double>(repetitions * calls.size());
  const double walk = walks.median();
  const double floor = floors.median();
  const double calls_alone = sorted_floors.median() - readings.median();
  state.counters["calls"] = static_cast<double>(calls.size());
  state.counters["walk_ns/call"] = walk * scale;
  state.counters["floor_ns/call"] = floor * scale;
  state.counters["calls_alone_ns/call"] = calls_alone * scale;
  state.counters["walk/floor"] = walk / floor;
  state.counters["walk/calls_alone"] = walk / calls_alone;
}

std::vector<std::string> statistics_leaves() {
  const yfw::schema modules = yfw::schema::load({YMAP_YANG_DIR});
  std::vector<std::string> names;
  for (const lysc_node *leaf : modules.children(modules.find("/ethernet-interface/statistics/statistic", {}))) {
    names.emplace_back(yfw::name(leaf));
  }
  return names;
}

void reply_of_all_statistics(benchmark::State &state) {
  static const std::vector<std::string> names = statistics_leaves();
  tree reply;
  fill_reply(reply, static_cast<size_t>(state.range(0)), names);
  measure(state, &ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface, YFW_REQUEST_READ_ALL,
          reply);
}

void read_of_empty_ethernet(benchmark::State &state) {
  tree read;
  read.root = named("ethernet", ETH_NS_OC_ETHERNET);
  measure(state, &ymap_ox_oc_ethernet_openconfigifethernet_augment_lvla_interface, YFW_REQUEST_READ_ALL, read);
}

void edit_of_all_config_leaves(benchmark::State &state) {
  tree edit;
  fill_edit(edit);
  measure(state, &ymap_ox_oc_ethernet_openconfigifethernet_augment_lvla_interface, YFW_REQUEST_WRITE, edit);
}

BENCHMARK(reply_of_all_statistics)->Arg(1)->Arg(100)->Arg(10000)->MinTime(2);
BENCHMARK(read_of_empty_ethernet)->MinTime(2);
BENCHMARK(edit_of_all_config_leaves)->MinTime(2);

}  // namespace

BENCHMARK_MAIN();
