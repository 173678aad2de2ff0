// Takes a fuzzer's input apart, byte by byte; zeros follow after its end.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace fuzz {

class bytes {
 public:
  bytes(const uint8_t *data, size_t size) : next_(data), left_(size) {}

  bool is_empty() const {
    return left_ == 0;
  }

  uint8_t number() {
    uint8_t result = 0;
    fill(&result, sizeof result);
    return result;
  }
  uint16_t number16() {
    uint16_t result = 0;
    fill(&result, sizeof result);
    return result;
  }
  uint32_t number32() {
    uint32_t result = 0;
    fill(&result, sizeof result);
    return result;
  }
  bool flag() {
    return number() % 2 != 0;
  }

  template <typename item_t, size_t count>
  item_t one_of(const item_t (&items)[count]) {
    return items[number() % count];
  }

  // Up to 255 bytes, the first of which is their number; none of them is zero.
  std::string text() {
    std::string result(number(), '\0');
    fill(result.data(), result.size());
    return result.c_str();
  }

  void fill(void *to, size_t size) {
    const size_t taken = std::min(size, left_);
    std::memcpy(to, next_, taken);
    next_ += taken;
    left_ -= taken;
  }

 private:
  const uint8_t *next_;
  size_t left_;
};

}  // namespace fuzz
