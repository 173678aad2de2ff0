// A device file: what is read and written again is the same device.
#include "yfw/memory_device.hpp"

#include "fuzz.hpp"

namespace {

std::string rewritten(const std::string &text) {
  return yfw::memory_device(yfw::document::read(text, fuzz::file, fuzz::modules())).text();
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  std::string once;
  if (!fuzz::refusal_of([&] { once = rewritten(fuzz::text_of(data, size)); })) {
    fuzz::require_same("the device, written twice", once, rewritten(once));
  }
  return 0;
}
