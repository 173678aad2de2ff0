// A capture in memory.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "capture_text.hpp"
#include "yfw/capture.hpp"
#include "yfw/internal/plugin_call.hpp"

namespace yfw {

// A node as it was written; texts are null where there is none.
struct captured_node {
  std::string name;
  std::optional<std::string> tag, value, ns;
  std::vector<uint32_t> fields;  // those of node_fields
  std::vector<size_t> children;  // places in capture::parts::nodes
  unsigned line = 0;
};

// A change that the framework made: of a field of the record or of a node.
struct captured_change {
  std::string target;  // "record", or the name of a node
  std::string field;
  uint32_t number;   // of a numeric field
  std::string node;  // of current-list; "null" for none
};

struct captured_answer {
  uint32_t status = 0;
  std::optional<std::string> value;
  std::string node, entry;  // "" when not given
  std::vector<captured_change> changes;
};

struct capture::parts {
  std::string file;
  std::string function;
  call_form form = call_form::entry;
  uint32_t operation = 0;
  std::optional<std::string> error_tag;
  std::string current_list;
  std::vector<uint32_t> record;  // those of record_fields
  std::vector<captured_node> nodes;
  std::map<std::string, size_t, std::less<>> by_name;
  std::vector<std::string> stack;  // names of nodes by level
  std::vector<plugin_event> acts;
  std::map<std::string, std::vector<captured_answer>, std::less<>> answers;  // by call, in the order in which they came
  bool has_returned = false;
};

}  // namespace yfw
