// A mapping table as it is written: one head, then one line a node. docs/table-format.md describes the text. Whether
// the lines fit the YANG module is not known here.
#pragma once

#include "error.hpp"

#include <istream>
#include <optional>
#include <string>
#include <vector>

namespace ymapgen {

// Which way a model is mapped: `xo` turns native data into OpenConfig data, `ox` OpenConfig requests into native ones.
enum class direction { xo, ox };

enum class action { walk, by_hand, ignore, absent, add, report, manual, set, read, unmapped };

struct row {
  place at;
  std::string name;
  ymapgen::action action = action::ignore;
  std::string action_word;
  std::vector<std::string> paths;  // as many as the action takes
  std::string translator;          // function behind `via`; empty: the value is passed on as it is
  bool is_read_all = false;        // when=10
  bool is_twice = false;
  bool is_replaced = false;
  bool has_hook_by_hand = false;  // augments=by-hand
  std::vector<row> children;
};

// A module that paths may end in, and the flag that such a path is added with.
struct target {
  place at;
  std::string module;
  unsigned flag = 1;
};

struct table {
  std::string file;     // as it was opened
  std::string plug_in;  // infix of all names
  std::string module;
  place module_at;
  ymapgen::direction direction = direction::xo;
  std::vector<std::string> includes;
  std::vector<target> targets;
  std::string wanted;  // predicate that lets `report` add its first path; empty if not given
  place nodes_at;
  std::vector<row> rows;
};

// Reads a table. Throws `error` with the place of what is wrong.
table read_table(const std::string &file);

// The same of a text; `file` is for messages.
table read_table(std::istream &input, const std::string &file);

// What stands for the direction in names: "xo" or "ox".
const char *word_of(direction which);

}  // namespace ymapgen
