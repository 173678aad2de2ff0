// A framework that answers the plug-in as a test tells it to, and notes each call as one line of text:
//
//   push config 1                                      the node hierarchy, with the level
//   pop config
//   add cfg:/interface-…/speed "10" from port-speed/0 flag 1   value, source node / its operation at that moment
//   add oper:/ethernet-…/speed flag 0                  neither: a read
//   key /interfaces/interface name                     lookups: a list key, an item, the tree stack
//   item /interface-… ethernet auto-negotiation
//   stack 1
//   list oc_if:/interfaces/interface name="Eth0"       find or add a list entry
//   current /ethernet-interface/statistics/statistic   current list
//   register statistic / unregister statistic          output list
//   strdup "bogus" for YFW MAP
//   aggregate lag                                      the neighbouring plug-in
//   ERR Invalid input value 'x'                        error points; trace points likewise, if wanted
//
// One framework exists at a time; the exported calls of the ABI go to it.
#pragma once

#include "yfw.h"

#include <list>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace support {

// One short-form line as it was delivered.
struct log_line {
  const int32_t *slot;
  int32_t slot_value;
  std::string text;
};

// A call that can fail, as it was made.
enum class failing { add, key, item, stack, list, current, aggregate, copy, comparison };

struct fallible_call {
  failing kind;
  size_t line;        // number of lines noted until it answers, its own included
  bool is_expanding;  // made while a container is expanded
};

class recording_framework {
 public:
  // Calls are expected to name this context and output tree; others are noted as such.
  recording_framework(yfw_ctx_t *ctx, yfw_node_t *out);
  ~recording_framework();
  recording_framework(const recording_framework &) = delete;
  recording_framework &operator=(const recording_framework &) = delete;

  // Answers.
  bool logs_errors = true;
  bool logs_traces = false;
  bool notes_comparisons = false;         // tags, namespaces and values that are compared
  bool creates_node = true;               // whether an added path hands back `created`
  std::map<size_t, uint32_t> add_status;  // of the n-th path that is added, from 1; else 0
  const char *interface_name = "Eth0";    // of the enclosing OpenConfig interface
  uint32_t key_status = 0;
  uint32_t item_status = 0;
  uint32_t stack_status = 0;
  uint32_t failing_status = 0;  // of `failing_call`
  yfw_itree_entry_t *stack_entry = nullptr;
  std::map<std::string, uint32_t> list_status;     // of finding or adding the entry of that name
  std::map<std::string, uint32_t> current_status;  // of making that list current
  std::vector<uint32_t> aggregate_status;          // call by call; then 0
  size_t failing_comparison = 0;                   // the n-th strcmp_s fails, from 1
  size_t failing_call = 0;                         // of all that can fail, from 1: sets nothing

  // Notes.
  std::string calls;              // the lines above
  std::vector<log_line> log;      // short form
  std::vector<std::string> ring;  // long form
  uint32_t sequence_number = 0;   // drawn last
  std::vector<fallible_call> fallible;
  std::set<const char *> matched;  // tags by address that were equal to what they were compared with
  yfw_node_t created{};

  // What the calls of the ABI share.
  void note(const std::string &line, const yfw_ctx_t *by, const yfw_node_t *to = nullptr);
  const yfw_ctx_t &ctx() const {
    return *ctx_;
  }
  const yfw_node_t *key_leaf(const std::string &name) const;
  bool fails(failing kind);
  size_t adds = 0;
  size_t comparisons = 0;
  size_t aggregate_calls = 0;
  std::vector<yfw_node_t *> hierarchy;
  std::list<std::string> copies;  // what yfw_strdup returned

 private:
  yfw_ctx_t *ctx_;
  yfw_node_t *out_;
};

}  // namespace support
