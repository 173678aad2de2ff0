// A plug-in's manifest.
#include "yfw/manifest.hpp"

#include "fuzz.hpp"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  (void)fuzz::refusal_of([&] { (void)yfw::manifest::parse(fuzz::text_of(data, size), fuzz::file); });
  return 0;
}
