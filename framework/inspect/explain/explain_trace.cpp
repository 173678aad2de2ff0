// Reads the long-form trace: "#22: TRC: FUNCTION:93 ctx=0x…,TEXT".
#include <algorithm>
#include <charconv>

#include "yfw/internal/explain_internal.hpp"
#include "yfw/trace.hpp"

namespace yfw {
namespace {

struct trace_point {
  std::string_view function;
  unsigned line = 0;
  std::string_view text;
};

// Empty for a line of another form.
trace_point read_point(std::string_view line) {
  trace_point point;
  const size_t kind = line.find(": ");
  const size_t name = kind == line.npos ? kind : line.find(": ", kind + 2);
  const size_t context = line.find(" ctx=");
  const size_t colon = context == line.npos ? context : line.rfind(':', context);
  const size_t comma = context == line.npos ? context : line.find(',', context);
  if (name == line.npos || colon == line.npos || comma == line.npos || colon < name + 2) {
    return point;
  }
  point.function = line.substr(name + 2, colon - name - 2);
  (void)std::from_chars(line.data() + colon + 1, line.data() + context, point.line);
  point.text = line.substr(comma + 1);
  return point;
}

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != text.npos;
}

bool is_callback(std::string_view name) {
  return contains(name, "_leaf_lvla_") || contains(name, "_list_lvla_") || contains(name, "_cont_lvla_") ||
         name.ends_with("_parse_augments");
}

// The names that the generator gives, see docs/table-format.md.
function_role role_of(std::string_view name) {
  if (name.starts_with("__")) {
    return function_role::generated;
  }
  if (contains(name, "_duck_map")) {
    return function_role::no_op;
  }
  if (is_callback(name)) {
    return function_role::custom;
  }
  return contains(name, "_lvla_") ? function_role::walker : function_role::helper;
}

// Collects the points of each function. A function that fails has no "End": it has ended at the next point of a
// function that was running before it.
class trace_reader {
 public:
  void read(const trace_point &point) {
    if (point.text == "Start") {
      add(point);
      open_.push_back(found_.size() - 1);
      return;
    }
    const auto is_of_function = [&](size_t index) { return found_[index].name == point.function; };
    const auto opened = std::find_if(open_.rbegin(), open_.rend(), is_of_function);
    if (opened == open_.rend()) {
      add(point);  // a function with a single point
      return;
    }
    open_.erase(opened.base(), open_.end());
    if (point.text == "End") {
      open_.pop_back();
    } else {
      found_[open_.back()].messages.emplace_back(point.text);
    }
  }

  std::vector<traced_function> functions() {
    return std::move(found_);
  }

 private:
  void add(const trace_point &point) {
    const auto depth = static_cast<unsigned>(open_.size());
    found_.push_back({std::string(point.function), role_of(point.function), point.line, depth, {}});
  }

  std::vector<traced_function> found_;
  std::vector<size_t> open_;
};

std::string name_part(const lysc_node *leaf) {
  std::string part = "_" + std::string(name(leaf));
  std::erase(part, '-');
  return part;
}

}  // namespace

std::string_view to_string(function_role role) {
  constexpr std::string_view names[] = {"walker", "generated", "custom", "no-op", "helper"};
  return names[static_cast<size_t>(role)];
}

std::vector<traced_function> traced_functions(const std::vector<std::string> &lines) {
  trace_reader reader;
  for (const std::string &line : lines) {
    if (const trace_point point = read_point(line); !point.function.empty()) {
      reader.read(point);
    }
  }
  return reader.functions();
}

const traced_function *mapping_function(const std::vector<traced_function> &walk, const lysc_node *leaf) {
  const std::string part = name_part(leaf);
  const traced_function *found = nullptr;
  for (const traced_function &function : walk) {
    const bool maps_it = is_callback(function.name) && function.name.ends_with(part);
    if (maps_it && (found == nullptr || function.role == function_role::custom)) {
      found = &function;
    }
  }
  return found;
}

void add_untraced(std::vector<traced_function> &walk, const lysc_node *leaf,
                  const std::function<bool(const std::string &)> &has_function) {
  const traced_function *answer = mapping_function(walk, leaf);
  if (answer == nullptr && !walk.empty() && walk.back().role == function_role::walker) {
    answer = &walk.back();  // the function that it called left no trace
  }
  const bool is_open = answer != nullptr && answer->name.ends_with(name_part(leaf));
  if (!is_open || answer->role == function_role::custom) {
    return;
  }
  const bool is_generated = answer->role == function_role::generated;
  std::string name = answer->name.substr(is_generated ? 2 : 0);
  const std::string_view kind = is_generated ? "_leaf_lvla_" : "_lvla_";
  const size_t at = name.find(kind);
  if (at == name.npos) {
    return;
  }
  name.replace(at, kind.size(), is_generated ? "_man_leaf_lvla_" : "_leaf_lvla_");
  if (has_function(name)) {
    const auto behind = walk.begin() + (answer - walk.data()) + 1;
    walk.insert(behind, {std::move(name), function_role::custom, 0, answer->depth + 1, {}});
  }
}

std::vector<traced_function> trace_functions(trace_log &log, const std::function<void(trace_log &)> &work) {
  std::ostringstream short_form;
  trace_log own(log.wants_short_form() ? &short_form : nullptr, true);
  work(own);
  std::ostringstream ring;
  own.print_ring(ring);
  std::vector<std::string> lines;
  std::istringstream read_back(ring.str());
  for (std::string line; std::getline(read_back, line);) {
    log.write_long(line.c_str());
    lines.push_back(std::move(line));
  }
  std::istringstream short_lines(short_form.str());
  for (std::string line; std::getline(short_lines, line);) {
    log.write_short(line);
  }
  return traced_functions(lines);
}

}  // namespace yfw
