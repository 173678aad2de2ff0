// Runs a plug-in on the input of a capture, with the answers that it holds.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <deque>

#include "capture_internal.hpp"
#include "capture_state.hpp"
#include "yfw/error.hpp"
#include "yfw/node.hpp"

namespace yfw {
namespace {

// Nothing reaches the output of a replay: its calls are answered before.
class no_output : public output_sink {
 public:
  uint32_t add_path(context & /*ctx*/, std::string_view /*path*/, const char * /*ns*/, const char * /*value*/,
                    yfw_node_t * /*source*/, yfw_node_t ** /*created*/, uint32_t /*flag*/) override {
    return status_framework_failure;
  }
  uint32_t enter_list(context & /*ctx*/, yfw_node_t ** /*current_list*/, std::string_view /*path*/,
                      const char * /*key_value*/, const char * /*key_name*/) override {
    return status_framework_failure;
  }
};

// The nodes of a capture, made again.
class replayed_nodes {
 public:
  replayed_nodes(const capture::parts &from, yfw_node_t &output_root) : from_(from) {
    nodes_["out"] = &output_root;
    for (size_t i = 0; i < from.nodes.size(); ++i) {
      const captured_node &node = from.nodes[i];
      if (node.name == "#" || !node.name.starts_with('#')) {
        yfw_node_t *&made = nodes_[node.name];
        made = made == nullptr ? arena_.nodes(1) : made;
        fill(*made, node);
      }
    }
  }

  // Null for "null" and ""; a node that the capture names without describing it is blank.
  yfw_node_t *at(const std::string &name) {
    if (name.empty() || name == "null") {
      return nullptr;
    }
    yfw_node_t *&found = nodes_[name];
    found = found == nullptr ? arena_.nodes(1) : found;
    return found;
  }

  yfw_node_t *input() const {
    const auto found = nodes_.find("#");
    return found == nodes_.end() ? nullptr : found->second;
  }

 private:
  void fill(yfw_node_t &to, const captured_node &from) {
    to.tag = from.tag ? from.tag->c_str() : nullptr;
    to.value = from.value ? from.value->c_str() : nullptr;
    to.ns = from.ns ? from.ns->c_str() : nullptr;
    for (size_t i = 0; i < node_fields.size(); ++i) {
      node_fields[i].set(to, from.fields[i]);
    }
    if (from.children.empty()) {
      return;
    }
    to.children = arena_.nodes(from.children.size());
    for (size_t i = 0; i < from.children.size(); ++i) {
      const captured_node &below = from_.nodes[from.children[i]];
      nodes_[below.name] = &to.children[i];
      extra(to.children[i]).parent = &to;
      fill(to.children[i], below);
    }
  }

  const capture::parts &from_;
  node_arena arena_;
  std::map<std::string, yfw_node_t *> nodes_;
};

class replayer : public call_observer {
 public:
  explicit replayer(const capture::parts &from)
      : from_(from), context_(no_manifest_, log_, sink_, from.operation), nodes_(from, context_.output_root) {
    yfw_request_record_t &record = context_.record;
    for (size_t i = 0; i < record_fields.size(); ++i) {
      record_fields[i].set(record, from.record[i]);
    }
    error_tag_ = from.error_tag ? strdup(from.error_tag->c_str()) : nullptr;
    record.error_tag = error_tag_;
    record.current_list = nodes_.at(from.current_list);
  }

  // A plug-in that sets the error tag does not free the one before.
  ~replayer() override {
    if (context_.record.error_tag != error_tag_) {
      std::free(error_tag_);
    }
  }
  replayer(const replayer &) = delete;
  replayer &operator=(const replayer &) = delete;

  std::vector<plugin_event> run(const plugin &mapping) {
    state_.emplace(context_.record, context_.output_root);
    for (const captured_node &node : from_.nodes) {
      (void)known(node.name);
    }
    context_.observer = this;
    const uint32_t status = call_directly(context_, mapping, from_.form, from_.function, nodes_.input());
    add(state_->changes("wrote", nullptr));
    add({"return " + capture_hex(status)});
    return std::move(acts_);
  }

  uint32_t pass(const abi_call &call, const std::function<uint32_t()> & /*answer*/) override {
    add(state_->changes("wrote", &call));
    const std::string line = state_->call_line(call);
    add({line});
    const captured_answer *answer = answer_to(line);
    const uint32_t status = answer != nullptr ? give(call, *answer) : do_without(call);
    if (status == 0) {
      state_->remember_result(call);
    }
    (void)state_->changes("set", &call);
    return status;
  }

 private:
  void add(const std::vector<std::string> &lines) {
    for (const std::string &line : lines) {
      acts_.push_back({line, 0});
    }
  }

  // The next of the answers to that call; the last one stays.
  const captured_answer *answer_to(const std::string &line) {
    const auto found = from_.answers.find(line);
    if (found == from_.answers.end()) {
      return nullptr;
    }
    size_t &used = used_[line];
    return &found->second[std::min(used++, found->second.size() - 1)];
  }

  // What a captured answer does not have is replaced by samples: a plug-in relies on the result of a call with status
  // 0.
  uint32_t give(const abi_call &call, const captured_answer &answer) {
    if (answer.status == 0 && call.text_out != nullptr) {
      *call.text_out = answer.value ? answer.value->c_str() : nullptr;
    }
    if (answer.status == 0 && call.node_out != nullptr) {
      *call.node_out = answer.node.empty() ? unheard_node() : known(answer.node);
    }
    if (answer.status == 0 && call.entry_out != nullptr) {
      given_entries_.push_back({answer.entry.empty() ? unheard_node() : nodes_.at(answer.entry)});
      *call.entry_out = &given_entries_.back();
    }
    for (const captured_change &change : answer.changes) {
      make(change);
    }
    return answer.status;
  }

  // A call that is not in the capture, made by another build.
  uint32_t do_without(const abi_call &call) {
    if (call.text_out != nullptr || call.entry_out != nullptr) {
      return status_framework_failure;
    }
    if (call.node_out != nullptr) {
      *call.node_out = unheard_node();
    }
    return 0;
  }

  yfw_node_t *unheard_node() {
    return known("unheard" + std::to_string(++unheard_));
  }

  yfw_node_t *known(const std::string &name) {
    yfw_node_t *node = nodes_.at(name);
    if (node != nullptr && !state_->knows(*node)) {
      state_->add_node(*node, name);
    }
    return node;
  }

  void make(const captured_change &change) {
    if (change.target != "record") {
      set(node_fields, *known(change.target), change);
    } else if (change.field == "current-list") {
      context_.record.current_list = change.node == "null" ? nullptr : known(change.node);
    } else {
      set(record_fields, context_.record, change);
    }
  }

  template <typename record_t>
  static void set(const std::vector<capture_field<record_t>> &fields, record_t &record, const captured_change &change) {
    std::ranges::find(fields, change.field, &capture_field<record_t>::name)->set(record, change.number);
  }

  const capture::parts &from_;
  const manifest no_manifest_;
  trace_log log_;
  no_output sink_;
  context context_;
  replayed_nodes nodes_;
  std::deque<yfw_itree_entry_t> given_entries_;
  std::optional<capture_state> state_;
  std::vector<plugin_event> acts_;
  std::map<std::string, size_t> used_;
  unsigned unheard_ = 0;
  char *error_tag_ = nullptr;
};

}  // namespace

std::vector<plugin_event> replay(const capture &recorded, const plugin &mapping) {
  return replayer(recorded.inside()).run(mapping);
}

std::optional<difference> first_difference(const std::vector<plugin_event> &expected,
                                           const std::vector<plugin_event> &actual) {
  const auto at = [](const std::vector<plugin_event> &acts, size_t i) {
    return i < acts.size() ? std::optional(acts[i]) : std::nullopt;
  };
  for (size_t i = 0; i < std::max(expected.size(), actual.size()); ++i) {
    if (i >= expected.size() || i >= actual.size() || expected[i].text != actual[i].text) {
      return difference{at(expected, i), at(actual, i)};
    }
  }
  return std::nullopt;
}

std::vector<std::string> difference::differing_arguments() const {
  std::vector<std::string> names;
  if (!expected || !actual) {
    return names;
  }
  const capture_line one(expected->text, "", 0);
  const capture_line other(actual->text, "", 0);
  if (one.size() != other.size() || one.size() < 2 || one.bare(0) != "call" || one.bare(1) != other.words()[1].bare) {
    return names;
  }
  for (size_t i = 2; i < one.size(); ++i) {
    if (one.words()[i].text != other.words()[i].text || one.words()[i].bare != other.words()[i].bare) {
      names.push_back(one.words()[i].name);
    }
  }
  return names;
}

}  // namespace yfw
