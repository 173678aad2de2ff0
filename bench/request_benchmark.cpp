// What requests cost through the service: the client's text or path in, the client's answer out.
#include <benchmark/benchmark.h>

#include <string>

#include "yfw/mapping_service.hpp"
#include "yfw/memory_device.hpp"
#include "yfw/plugin.hpp"
#include "yfw/schema.hpp"
#include "yfw/trace.hpp"

namespace {

const yfw::schema &modules() {
  static const yfw::schema schema = yfw::schema::load({YMAP_YANG_DIR});
  return schema;
}

const yfw::plugin &mapping() {
  static const yfw::plugin plugin = yfw::plugin::load(YMAP_PLUGIN);
  return plugin;
}

// A device with that many configured interfaces.
yfw::memory_device ports(int64_t count) {
  std::string text = R"({"Zemlo-QUARN-interface-cfg:interface-configurations": {"interface-configuration": [)";
  for (int64_t i = 0; i < count; ++i) {
    text += (i == 0 ? "" : ",") + std::string(R"({"interface-name": "Gi)") + std::to_string(i) +
            R"(", "Zemlo-QUARN-mdrv-lib-cfg:mac-addr": "02:00:00:00:00:01",
               "Zemlo-QUARN-drivers-media-eth-cfg:ethernet": {"duplex": "full", "speed": "100"}})";
  }
  return yfw::memory_device(yfw::document::read(text + "]}}", "ports", modules()));
}

constexpr const char *ethernet = "/interfaces/interface[name='Gi0']/ethernet";

void get(benchmark::State &state, const std::string &path) {
  yfw::trace_log silent;
  yfw::memory_device device = ports(state.range(0));
  const yfw::mapping_service service(mapping(), device, silent);
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(service.find(path, yfw::client_operation::get, yfw::content::all));
  }
  state.SetItemsProcessed(state.iterations());
}

void get_leaf(benchmark::State &state) {
  get(state, std::string(ethernet) + "/config/port-speed");
}

void get_ethernet(benchmark::State &state) {
  get(state, ethernet);
}

void set_leaf(benchmark::State &state) {
  yfw::trace_log silent;
  yfw::memory_device device = ports(state.range(0));
  const yfw::mapping_service service(mapping(), device, silent);
  const std::string path = std::string(ethernet) + "/config/duplex-mode";
  bool is_full = false;
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(service.edit_node(path, is_full ? "FULL" : "HALF", YFW_OPERATION_MERGE));
    is_full = !is_full;
  }
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK(get_leaf)->Arg(1)->Arg(1000)->Arg(100000);
BENCHMARK(get_ethernet)->Arg(1)->Arg(1000)->Arg(100000);
BENCHMARK(set_leaf)->Arg(1)->Arg(1000)->Arg(100000);

}  // namespace

BENCHMARK_MAIN();
