// A path or XPath expression as `explain`, `get` and `set` take it: the whole input, or before a line feed, after which
// a value to set follows.
#include "fuzz.hpp"
#include "yfw/explain.hpp"
#include "yfw/mapping_service.hpp"
#include "yfw/memory_device.hpp"
#include "yfw/trace.hpp"

namespace {

constexpr const char *native_data =
    "<interface-configurations xmlns='urn:zemlo:yang:Zemlo-QUARN-interface-cfg'><interface-configuration>"
    "<interface-name>Eth0</interface-name>"
    "<ethernet xmlns='urn:zemlo:yang:Zemlo-QUARN-drivers-media-eth-cfg'><speed>100</speed></ethernet>"
    "</interface-configuration></interface-configurations>";

yfw::memory_device some_device() {
  return yfw::memory_device(yfw::document::read(native_data, "device", fuzz::modules()));
}

void set(const std::string &path, const std::string &value) {
  yfw::trace_log log;
  yfw::memory_device device = some_device();
  yfw::mapping_service(fuzz::mapping(), device, log).edit_node(path, value, YFW_OPERATION_MERGE);
  (void)device.text();
}

void find(const std::string &path) {
  yfw::trace_log log;
  yfw::memory_device device = some_device();
  const yfw::reply answer =
      yfw::mapping_service(fuzz::mapping(), device, log).find(path, yfw::client_operation::get, yfw::content::all);
  fuzz::require_read_back(answer.data);
}

void explain(const std::string &path, const std::string &value) {
  yfw::trace_log log(nullptr, true);
  (void)yfw::explain(path, {.value = value}, fuzz::modules(), fuzz::mapping(), log);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  const std::string text = fuzz::text_of(data, size);
  const std::string path = text.substr(0, text.find('\n'));
  const std::string value = path.size() < text.size() ? text.substr(path.size() + 1) : "SPEED_10MB";
  (void)fuzz::refusal_of([&] { set(path, value); });
  (void)fuzz::refusal_of([&] { find(path); });
  (void)fuzz::refusal_of([&] { explain(path, value); });
  return 0;
}
