// Searches that look at as many bytes at a time as the processor compares at once.
#pragma once

#include <cstddef>
#include <experimental/simd>
#include <string_view>

namespace yfw {

// Where the first byte at or after `begin` is for which `is_wanted` holds; the size of the text when there is none.
// `is_wanted` gets a vector of signed bytes, and a single one at the end of the text.
template <typename is_wanted_t>
size_t find_byte_if(std::string_view text, size_t begin, const is_wanted_t &is_wanted) {
  namespace simd = std::experimental;
  using block = simd::native_simd<signed char>;
  size_t at = begin;
  for (; at + block::size() <= text.size(); at += block::size()) {
    const block bytes(reinterpret_cast<const signed char *>(text.data() + at), simd::element_aligned);
    if (const auto found = is_wanted(bytes); simd::any_of(found)) {
      return at + static_cast<size_t>(simd::find_first_set(found));
    }
  }
  while (at < text.size() && !is_wanted(static_cast<signed char>(text[at]))) {
    ++at;
  }
  return at;
}

// Where the first byte at or after `begin` is that is one of `wanted`; the size of the text when there is none.
template <char... wanted>
size_t find_byte(std::string_view text, size_t begin) {
  return find_byte_if(text, begin, [](const auto &bytes) { return ((bytes == wanted) || ...); });
}

}  // namespace yfw
