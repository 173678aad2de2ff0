// What both writers share: a buffer before the stream, indentation, and the checks of values.
#pragma once

#include <array>
#include <ostream>
#include <string>
#include <string_view>

#include "node_values.hpp"
#include "yfw/error.hpp"
#include "yfw/internal/text.hpp"
#include "yfw/node.hpp"
#include "yfw/writer.hpp"

namespace yfw {

class write_buffer {
 public:
  write_buffer(std::ostream &out, bool is_pretty) : out_(out), is_pretty_(is_pretty) {}

  write_buffer &operator<<(std::string_view text) {
    text_ += text;
    return *this;
  }
  write_buffer &operator<<(char c) {
    text_ += c;
    return *this;
  }

  // Begins a line, indented by that many levels.
  void line(size_t depth) {
    if (is_pretty_) {
      text_ += '\n';
      text_.append(2 * depth, ' ');
    }
    if (text_.size() > flush_bytes) {
      flush();
    }
  }

  void flush() {
    out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
    text_.clear();
    if (!out_) {
      throw error("the output cannot be written");
    }
  }

 private:
  static constexpr size_t flush_bytes = 262144;
  std::ostream &out_;
  bool is_pretty_;
  std::string text_;
};

// A set of bytes with a search that needs one look-up a byte.
class byte_set {
 public:
  constexpr explicit byte_set(std::string_view bytes) {
    for (const char c : bytes) {
      has_[static_cast<unsigned char>(c)] = true;
    }
  }

  // How many bytes at the start of `text` are not in the set.
  size_t length_without(std::string_view text) const {
    size_t length = 0;
    while (length < text.size() && !has_[static_cast<unsigned char>(text[length])]) {
      ++length;
    }
    return length;
  }

 private:
  std::array<bool, 256> has_{};
};

// The operation in force below a node; `outer` is the one around it.
inline uint32_t operation_in_force(const data_node &node, uint32_t outer) {
  return node.operation.value_or(outer);
}

}  // namespace yfw
