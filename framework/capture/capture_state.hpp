// What a plug-in can see and change during a call, as lines of a capture. Recording and replay describe a plug-in's
// actions by the same functions, so that the lines can be compared.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "yfw/internal/abi_call.hpp"

namespace yfw {

// A number in a record that crosses the ABI, by the name that it has in captures.
template <typename record_t>
struct capture_field {
  const char *name;
  uint32_t (*get)(const record_t &);
  void (*set)(record_t &, uint32_t);
  uint32_t maximum;
  bool is_hex;
};
extern const std::vector<capture_field<yfw_node_t>> node_fields;
extern const std::vector<capture_field<yfw_request_record_t>> record_fields;

// ` operation=3 flags=0x40`: those that are not 0.
template <typename record_t>
std::string field_words(const std::vector<capture_field<record_t>> &fields, const record_t &record);

class capture_state {
 public:
  // `shown` is applied to values before they are written; none: they are written as they are.
  using text_filter = std::function<std::string(std::string_view)>;

  capture_state(yfw_request_record_t &record, yfw_node_t &output_root, text_filter shown = {});

  // Names a node: `#` and what is below it `#1`, `#1.1`, …, or just the node.
  void add_tree(const yfw_node_t &root);
  void add_node(const yfw_node_t &node, const std::string &name);

  bool knows(const yfw_node_t &node) const {
    return nodes_.contains(&node);
  }

  // The name of a node, `null` for null. One that was never seen becomes the next of `made1`, `made2`, …, and its line
  // is added to `lines` if given.
  std::string name_of(const yfw_node_t *node, std::vector<std::string> *lines = nullptr);

  std::string node_line(const yfw_node_t &node, const std::string &name) const;
  std::string call_line(const abi_call &call);

  // `value="x"`, for texts that may be anonymised.
  std::string value_word(const char *name, const char *text) const;

  // One line for each field that changed since the last check, `WORD #1 operation 3 -> 4`. Checks the record, the
  // output root, the node that a call found last, and the nodes that this one names; without a call everything.
  std::vector<std::string> changes(const char *word, const abi_call *call);

  // Remembers the node that a call found: it is not a change, and is checked from now on.
  void remember_result(const abi_call &call);

 private:
  struct seen_node {
    std::string name;
    uint32_t fields[5];
  };
  void look(const yfw_node_t &node, const char *word, std::vector<std::string> &lines);
  void settle_record();
  void look_at_record(const char *word, std::vector<std::string> &lines);

  yfw_request_record_t &record_;
  yfw_node_t &output_root_;
  text_filter shown_;
  std::unordered_map<const yfw_node_t *, seen_node> nodes_;
  std::vector<const yfw_node_t *> order_;  // of naming
  unsigned made_ = 0;
  const yfw_node_t *found_last_ = nullptr;
  std::vector<uint32_t> record_values_;
  std::string error_tag_;
  const yfw_node_t *current_list_ = nullptr;
};

}  // namespace yfw
