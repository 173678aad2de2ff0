// Searches that look at as many bytes at a time as the processor compares at once.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <experimental/simd>
#include <string_view>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

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

// Finds one after the other the bytes of a text that are one of `wanted`, none of which is zero: for texts where they
// are so near to each other that a search for each would begin more often than it goes on. Marks 64 bytes at a time.
template <char... wanted>
class byte_marks {
 public:
  explicit byte_marks(std::string_view text) : text_(text) {}

  // Where the first of them at or after `at` is; the size of the text when there is none.
  size_t next(size_t at) {
    while (at < text_.size()) {
      if (at - begin_ >= block_bytes) {
        mark(at);
      }
      if (const uint64_t marks = marks_ >> (at - begin_); marks != 0) {
        return at + static_cast<size_t>(std::countr_zero(marks));
      }
      at = begin_ + block_bytes;
    }
    return text_.size();
  }

 private:
  static constexpr size_t block_bytes = 64;

  void mark(size_t begin) {
    begin_ = begin;
    const char *block = text_.data() + begin;
    char rest[block_bytes];
    if (text_.size() - begin < block_bytes) {
      std::fill(std::copy(block, text_.data() + text_.size(), rest), rest + block_bytes, '\0');
      block = rest;
    }
    marks_ = 0;
#if defined(__SSE2__)
    for (size_t i = 0; i < block_bytes; i += sizeof(__m128i)) {
      const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(block + i));
      __m128i found = _mm_setzero_si128();
      ((found = _mm_or_si128(found, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(wanted)))), ...);
      marks_ |= static_cast<uint64_t>(_mm_movemask_epi8(found)) << i;
    }
#else
    for (size_t i = 0; i < block_bytes; ++i) {
      marks_ |= static_cast<uint64_t>(((block[i] == wanted) || ...)) << i;
    }
#endif
  }

  std::string_view text_;
  size_t begin_ = static_cast<size_t>(0) - block_bytes;  // of the marked bytes; at first none are
  uint64_t marks_ = 0;
};

}  // namespace yfw
