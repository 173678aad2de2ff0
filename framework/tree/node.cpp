#include "yfw/node.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace yfw {

static bool is_equal(const char *text, std::string_view other) {
  return text != nullptr && other == text;
}

const yfw_node_t *child(const yfw_node_t &node, std::string_view tag) {
  return node.ns != nullptr ? child(node, tag, node.ns) : nullptr;
}

const yfw_node_t *child(const yfw_node_t &node, std::string_view tag, std::string_view ns) {
  const auto all = children(node);
  const auto found = std::ranges::find_if(
      all, [&](const yfw_node_t &each) { return is_equal(each.tag, tag) && is_equal(each.ns, ns); });
  return found == all.end() ? nullptr : &*found;
}

yfw_node_t *child(yfw_node_t &node, std::string_view tag) {
  return const_cast<yfw_node_t *>(child(std::as_const(node), tag));
}

yfw_node_t *child(yfw_node_t &node, std::string_view tag, std::string_view ns) {
  return const_cast<yfw_node_t *>(child(std::as_const(node), tag, ns));
}

bool is_envelope(const yfw_node_t &node) {
  return is_envelope_ns(node.ns);
}

bool is_envelope_ns(const char *ns) {
  return is_equal(ns, netconf_ns) || is_equal(ns, restconf_ns);
}

static constexpr std::array<std::string_view, 5> operation_words{"merge", "replace", "create", "delete", "remove"};

std::string_view operation_word(uint32_t operation) {
  return operation < operation_words.size() ? operation_words[operation] : std::string_view();
}

uint8_t operation_number(std::string_view word) {
  const auto found = std::ranges::find(operation_words, word);
  return found == operation_words.end() ? no_operation : static_cast<uint8_t>(found - operation_words.begin());
}

static void begin_extra(yfw_node_t &node) {
  new (node.framework_104) node_extra{nullptr, nullptr, nullptr, 0, no_operation};
}

yfw_node_t blank_node() {
  yfw_node_t node{};
  begin_extra(node);
  return node;
}

yfw_node_t *node_arena::room(size_t count) {
  constexpr size_t block_nodes = 1024;
  if (count > nodes_left_) {
    nodes_left_ = std::max(count, block_nodes);
    node_blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(nodes_left_ * sizeof(yfw_node_t)));
    next_node_ = node_blocks_.back().get();
  }
  auto *first = reinterpret_cast<yfw_node_t *>(next_node_);
  next_node_ += count * sizeof(yfw_node_t);
  nodes_left_ -= count;
  return first;
}

yfw_node_t *node_arena::nodes(size_t count) {
  yfw_node_t *first = count == 0 ? nullptr : room(count);
  if (count != 0) {
    std::memset(first, 0, count * sizeof *first);
  }
  std::for_each_n(first, count, begin_extra);
  return first;
}

char *node_arena::text(std::string_view text) {
  constexpr size_t block_bytes = 65536;
  if (text.size() >= text_left_) {
    const size_t room = std::max(text.size() + 1, block_bytes);
    text_blocks_.push_back(std::make_unique_for_overwrite<char[]>(room));
    next_text_ = text_blocks_.back().get();
    text_left_ = room;
  }
  char *copy = next_text_;
  if (!text.empty()) {
    std::memcpy(copy, text.data(), text.size());
  }
  copy[text.size()] = '\0';
  next_text_ += text.size() + 1;
  text_left_ -= text.size() + 1;
  return copy;
}

}  // namespace yfw
