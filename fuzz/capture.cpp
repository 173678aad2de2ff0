// A capture file, read and replayed against the plug-in.
#include "yfw/capture.hpp"

#include "fuzz.hpp"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  (void)fuzz::refusal_of([&] {
    const yfw::capture recorded = yfw::capture::read(fuzz::text_of(data, size), fuzz::file);
    const std::vector<yfw::plugin_event> acts = replay(recorded, fuzz::mapping());
    if (const auto where = first_difference(recorded.events(), acts)) {
      (void)where->differing_arguments();
    }
  });
  return 0;
}
