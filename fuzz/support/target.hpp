// What a fuzz target is: see libFuzzer's manual. Returns 0; a finding ends the process.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);
