#include "capture_state.hpp"

#include <limits>
#include <set>

#include "capture_text.hpp"
#include "yfw/node.hpp"

namespace yfw {
namespace {

template <auto member>
struct member_of;
template <typename record_t, typename number_t, number_t record_t::*member>
struct member_of<member> {
  static capture_field<record_t> field(const char *name, bool is_hex) {
    return {name, [](const record_t &record) { return static_cast<uint32_t>(record.*member); },
            [](record_t &record, uint32_t value) { record.*member = static_cast<number_t>(value); },
            std::numeric_limits<number_t>::max(), is_hex};
  }
};

template <auto member>
auto decimal(const char *name) {
  return member_of<member>::field(name, false);
}
template <auto member>
auto hex(const char *name) {
  return member_of<member>::field(name, true);
}

std::string change_line(const char *word, const std::string &what, const char *field, const std::string &before,
                        const std::string &now) {
  return std::string(word) + ' ' + what + ' ' + field + ' ' + before + " -> " + now;
}

template <typename record_t>
std::string field_text(const capture_field<record_t> &field, uint32_t value) {
  return field.is_hex ? capture_hex(value) : std::to_string(value);
}

}  // namespace

const std::vector<capture_field<yfw_node_t>> node_fields = {
    decimal<&yfw_node_t::operation>("operation"),  hex<&yfw_node_t::flags>("flags"),
    decimal<&yfw_node_t::mapping_mark>("mark"),    hex<&yfw_node_t::mark_flags>("mark-flags"),
    decimal<&yfw_node_t::child_count>("children"),
};

const std::vector<capture_field<yfw_request_record_t>> record_fields = {
    hex<&yfw_request_record_t::walker_flags>("walker-flags"),
    decimal<&yfw_request_record_t::output_list_count>("output-list-count"),
    decimal<&yfw_request_record_t::expansion_in_progress>("expansion-in-progress"),
    hex<&yfw_request_record_t::expansion_flags>("expansion-flags"),
    decimal<&yfw_request_record_t::leaf_marking_suppressed>("leaf-marking-suppressed"),
    decimal<&yfw_request_record_t::selection_mode>("selection-mode"),
    hex<&yfw_request_record_t::selection_1172>("selection-1172"),
    hex<&yfw_request_record_t::selection_1216>("selection-1216"),
    hex<&yfw_request_record_t::selection_1240>("selection-1240"),
    hex<&yfw_request_record_t::selection_1248>("selection-1248"),
    hex<&yfw_request_record_t::selection_1272>("selection-1272"),
    hex<&yfw_request_record_t::selection_1273>("selection-1273"),
    hex<&yfw_request_record_t::selection_1280>("selection-1280"),
    hex<&yfw_request_record_t::selection_1292>("selection-1292"),
    hex<&yfw_request_record_t::selection_1625>("selection-1625"),
};

template <typename record_t>
std::string field_words(const std::vector<capture_field<record_t>> &fields, const record_t &record) {
  std::string words;
  for (const auto &field : fields) {
    if (const uint32_t value = field.get(record); value != 0) {
      words.append(" ").append(field.name).append("=").append(field_text(field, value));
    }
  }
  return words;
}
template std::string field_words(const std::vector<capture_field<yfw_request_record_t>> &,
                                 const yfw_request_record_t &);

capture_state::capture_state(yfw_request_record_t &record, yfw_node_t &output_root, text_filter shown)
    : record_(record), output_root_(output_root), shown_(std::move(shown)) {
  add_node(output_root_, "out");
  settle_record();
}

void capture_state::settle_record() {
  record_values_.clear();
  for (const auto &field : record_fields) {
    record_values_.push_back(field.get(record_));
  }
  error_tag_ = capture_literal(record_.error_tag);
  current_list_ = record_.current_list;
}

void capture_state::add_node(const yfw_node_t &node, const std::string &name) {
  seen_node &added = nodes_[&node];
  added.name = name;
  for (size_t i = 0; i < node_fields.size(); ++i) {
    added.fields[i] = node_fields[i].get(node);
  }
  order_.push_back(&node);
}

void capture_state::add_tree(const yfw_node_t &root) {
  const std::string name = nodes_.contains(&root) ? nodes_.at(&root).name : "#";
  if (name == "#") {
    add_node(root, name);
  }
  size_t index = 0;
  for (const yfw_node_t &below : children(root)) {
    add_node(below, name + (name == "#" ? "" : ".") + std::to_string(++index));
    add_tree(below);
  }
}

std::string capture_state::name_of(const yfw_node_t *node, std::vector<std::string> *lines) {
  if (node == nullptr) {
    return "null";
  }
  if (const auto found = nodes_.find(node); found != nodes_.end()) {
    return found->second.name;
  }
  std::string name = "made" + std::to_string(++made_);
  add_node(*node, name);
  if (lines != nullptr) {
    lines->push_back(node_line(*node, name));
  }
  return name;
}

std::string capture_state::value_word(const char *name, const char *text) const {
  const std::string literal = text == nullptr || !shown_ ? capture_literal(text) : capture_literal(shown_(text));
  return std::string(name) + '=' + literal;
}

std::string capture_state::node_line(const yfw_node_t &node, const std::string &name) const {
  std::string line = "node " + name + " tag=" + capture_literal(node.tag) + ' ' + value_word("value", node.value) +
                     " ns=" + capture_literal(node.ns);
  return line + field_words(node_fields, node);
}

void capture_state::remember_result(const abi_call &call) {
  if (call.node_out == nullptr || *call.node_out == nullptr) {
    return;
  }
  found_last_ = *call.node_out;
  if (call.node_out == &record_.current_list) {
    current_list_ = record_.current_list;
  }
}

std::string capture_state::call_line(const abi_call &call) {
  static const std::set<std::string_view> of_data = {"value", "key-value", "path"};
  std::string line = std::string("call ") + call.function;
  for (const auto &[name, argument] : call.arguments) {
    line += ' ';
    if (const auto *text = std::get_if<const char *>(&argument); text != nullptr) {
      line += of_data.contains(name) ? value_word(name, *text) : std::string(name) + '=' + capture_literal(*text);
    } else if (const auto *node = std::get_if<const yfw_node_t *>(&argument); node != nullptr) {
      line.append(name).append("=").append(name_of(*node));
    } else {
      line.append(name).append("=").append(std::to_string(std::get<uint32_t>(argument)));
    }
  }
  return line;
}

std::vector<std::string> capture_state::changes(const char *word, const abi_call *call) {
  std::vector<std::string> lines;
  look_at_record(word, lines);
  if (call == nullptr) {
    for (const yfw_node_t *node : order_) {
      look(*node, word, lines);
    }
    return lines;
  }
  look(output_root_, word, lines);
  if (found_last_ != nullptr) {
    look(*found_last_, word, lines);
  }
  for (const auto &[name, argument] : call->arguments) {
    const auto *node = std::get_if<const yfw_node_t *>(&argument);
    if (node != nullptr && *node != nullptr && nodes_.contains(*node)) {
      look(**node, word, lines);
    }
  }
  return lines;
}

void capture_state::look(const yfw_node_t &node, const char *word, std::vector<std::string> &lines) {
  seen_node &last = nodes_.at(&node);
  for (size_t i = 0; i < node_fields.size(); ++i) {
    const uint32_t now = node_fields[i].get(node);
    if (now != last.fields[i]) {
      lines.push_back(change_line(word, last.name, node_fields[i].name, field_text(node_fields[i], last.fields[i]),
                                  field_text(node_fields[i], now)));
      last.fields[i] = now;
    }
  }
}

void capture_state::look_at_record(const char *word, std::vector<std::string> &lines) {
  for (size_t i = 0; i < record_fields.size(); ++i) {
    const uint32_t now = record_fields[i].get(record_);
    if (now != record_values_[i]) {
      lines.push_back(change_line(word, "record", record_fields[i].name,
                                  field_text(record_fields[i], record_values_[i]), field_text(record_fields[i], now)));
    }
  }
  if (const std::string now = capture_literal(record_.error_tag); now != error_tag_) {
    lines.push_back(change_line(word, "record", "error-tag", error_tag_, now));
  }
  if (record_.current_list != current_list_) {
    const std::string before = name_of(current_list_);
    lines.push_back(change_line(word, "record", "current-list", before, name_of(record_.current_list)));
  }
  settle_record();
}

}  // namespace yfw
