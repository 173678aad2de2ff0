#include <algorithm>

#include "capture_internal.hpp"
#include "capture_state.hpp"
#include "yfw/error.hpp"
#include "yfw/node.hpp"

namespace yfw {
namespace {

constexpr std::string_view first_line = "ymap-capture 1";
constexpr size_t deepest = 128;  // as for documents
constexpr size_t highest_stack = 16;
constexpr size_t flags_field = 1;  // in node_fields
constexpr size_t children_field = 4;

class capture_reader {
 public:
  capture_reader(const std::string &text, const std::string &file) : text_(text) {
    parts_.file = file;
  }

  capture::parts read() {
    std::string_view rest = text_;
    while (!rest.empty()) {
      const size_t end = std::min(rest.find('\n'), rest.size());
      const std::string_view line = rest.substr(0, end);
      if (++number_ == 1 && line != first_line) {
        throw error(place{parts_.file, 1, {}},
                    "invalid first line " + in_quotes(line) + ", expected " + in_quotes(first_line));
      }
      read_line(capture_line(line, parts_.file, number_));
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    if (parts_.record.empty()) {
      throw error(place{parts_.file}, "ends before the record of the request");
    }
    require_children();
    return std::move(parts_);
  }

 private:
  void read_line(const capture_line &line) {
    if (line.text().empty()) {
      return;
    }
    if (parts_.has_returned) {
      line.fail("continues after 'return'");
    }
    if (number_ == 2) {
      read_function(line);
    } else if (number_ == 3) {
      read_record(line);
    } else if (number_ > 3) {
      read_other(line);
    }
  }

  void read_other(const capture_line &line) {
    const std::string &word = line.bare(0);
    if (word == "node") {
      read_node(line);
    } else if (word == "stack") {
      read_stack(line);
    } else if (word == "answer") {
      read_answer(line);
    } else if (word == "set") {
      read_change(line);
    } else if (word == "call" || word == "wrote" || word == "return") {
      read_act(line, word);
    } else if (word != "above") {
      line.fail("unknown word " + in_quotes(word) + ", expected 'above', 'node', 'stack', 'call', 'answer', " +
                "'set', 'wrote', 'return'");
    }
  }

  void read_function(const capture_line &line) {
    static const std::vector<call_form> forms = {call_form::entry, call_form::report_defaults,
                                                 call_form::create_defaults};
    if (line.bare(0) != "function") {
      line.fail("is not the name of the function that was called");
    }
    parts_.function = line.bare(1);
    const std::string &form = line.value("form").bare;
    const auto found = std::ranges::find(forms, form, [](call_form each) { return to_string(each); });
    if (found == forms.end()) {
      line.fail("invalid form " + in_quotes(form) + ", expected 'entry', 'report-defaults', 'create-defaults'");
    }
    parts_.form = *found;
    require_form(line);
  }

  // A function called in a form that is not its own would do anything: the name must fit.
  void require_form(const capture_line &line) const {
    const std::string &name = parts_.function;
    const bool is_walk = name.find("_lvla_") != std::string::npos && name.find("_cont_lvla_") == std::string::npos;
    const bool fits = parts_.form == call_form::entry             ? is_walk && name.starts_with("ymap_")
                      : parts_.form == call_form::report_defaults ? !is_walk && name.starts_with("ymap_xo_")
                                                                  : !is_walk && name.starts_with("ymap_ox_");
    if (!fits) {
      line.fail(in_quotes(name) + " is not the name of a function of that form");
    }
  }

  void read_record(const capture_line &line) {
    if (line.bare(0) != "record") {
      line.fail("is not the record of the request");
    }
    parts_.operation = line.number("operation");
    parts_.error_tag = line.text("error-tag");
    parts_.current_list = line.value("current-list").bare;
    for (const auto &field : record_fields) {
      parts_.record.push_back(line.number_or_0(field.name, field.maximum));
    }
  }

  void read_node(const capture_line &line) {
    captured_node node{line.bare(1), line.text("tag"), line.text("value"), line.text("ns"), {}, {}};
    for (const auto &field : node_fields) {
      node.fields.push_back(line.number_or_0(field.name, field.maximum));
    }
    if (node.name.empty() || node.name == "null") {
      line.fail("has no name");
    }
    if (!parts_.by_name.emplace(node.name, parts_.nodes.size()).second) {
      line.fail(in_quotes(node.name) + " is defined twice");
    }
    if (node.name.starts_with('#') && node.name != "#") {
      add_to_parent(line, node.name);
    }
    node.line = line.number();
    parts_.nodes.push_back(std::move(node));
  }

  // A plug-in trusts the count of the children. Without lines for them the array is null, as in a malformed tree.
  void require_children() const {
    for (const captured_node &node : parts_.nodes) {
      const bool is_flagged = (node.fields[flags_field] & YFW_NODE_HAS_CHILDREN) != 0;
      if (!node.children.empty() && (!is_flagged || node.fields[children_field] != node.children.size())) {
        throw error(place{parts_.file, node.line, {}}, "has " + std::to_string(node.children.size()) +
                                                           " children, but 'children' or 'flags' say otherwise");
      }
    }
  }

  // #3.1 is the first child of #3, which is the third of #.
  void add_to_parent(const capture_line &line, const std::string &name) {
    const size_t dot = name.rfind('.');
    const std::string above = dot == std::string::npos ? "#" : name.substr(0, dot);
    const std::string index = name.substr(dot == std::string::npos ? 1 : dot + 1);
    const auto parent = parts_.by_name.find(above);
    if (parent == parts_.by_name.end()) {
      line.fail("unknown node " + in_quotes(above));
    }
    std::vector<size_t> &children = parts_.nodes[parent->second].children;
    children.push_back(parts_.nodes.size());
    if (index != std::to_string(children.size())) {
      line.fail("is not the next child of " + in_quotes(above) + ", which is number " +
                std::to_string(children.size()));
    }
    if (static_cast<size_t>(std::ranges::count(name, '.')) >= deepest) {
      line.fail("is nested more than " + std::to_string(deepest) + " deep");
    }
  }

  void read_stack(const capture_line &line) {
    if (line.bare(1) != std::to_string(parts_.stack.size()) || parts_.stack.size() == highest_stack) {
      line.fail(in_quotes(line.bare(1)) + " is not the next level of the stack");
    }
    parts_.stack.push_back(known_node(line, "node"));
  }

  void read_act(const capture_line &line, const std::string &word) {
    parts_.acts.push_back({line.text(), line.number()});
    if (word == "call") {
      answers_ = &parts_.answers[line.text()];
      answers_->emplace_back();
    } else if (word == "return") {
      parts_.has_returned = true;
    }
    is_answered_ = word != "call";
  }

  void read_answer(const capture_line &line) {
    if (is_answered_) {
      line.fail("answers no call");
    }
    is_answered_ = true;
    captured_answer &answer = answers_->back();
    answer.status = line.number_or_0("status");
    answer.value = line.find("value") != nullptr ? line.text("value") : std::nullopt;
    answer.node = line.find("node") != nullptr ? known_node(line, "node") : "";
    answer.entry = line.find("entry") != nullptr ? known_node(line, "entry") : "";
    if (answer.entry == "null") {
      line.fail("answers with an invalid entry");
    }
  }

  // set TARGET FIELD BEFORE -> NOW
  void read_change(const capture_line &line) {
    if (answers_ == nullptr) {
      line.fail("follows no call");
    }
    if (line.size() != 6 || line.bare(4) != "->") {
      line.fail("is not 'set TARGET FIELD BEFORE -> NOW'");
    }
    captured_change change{line.bare(1), line.bare(2), 0, ""};
    if (change.target != "record" && !parts_.by_name.contains(change.target)) {
      line.fail("unknown node " + in_quotes(change.target));
    }
    if (change.target == "record" && change.field == "current-list") {
      change.node = line.bare(5);
    } else if (change.target == "record") {
      change.number = line.number_of(line.words()[5], field_maximum(line, record_fields, change.field));
    } else {
      change.number = line.number_of(line.words()[5], field_maximum(line, node_fields, change.field));
    }
    answers_->back().changes.push_back(std::move(change));
  }

  template <typename record_t>
  static uint32_t field_maximum(const capture_line &line, const std::vector<capture_field<record_t>> &fields,
                                const std::string &name) {
    const auto found = std::ranges::find(fields, name, &capture_field<record_t>::name);
    if (found == fields.end() || name == "children") {
      line.fail("unknown field " + in_quotes(name));
    }
    return found->maximum;
  }

  std::string known_node(const capture_line &line, std::string_view name) const {
    const std::string &node = line.value(name).bare;
    if (node != "null" && !node.starts_with("made") && !parts_.by_name.contains(node)) {
      line.fail("unknown node " + in_quotes(node));
    }
    return node;
  }

  const std::string &text_;
  capture::parts parts_;
  unsigned number_ = 0;
  std::vector<captured_answer> *answers_ = nullptr;
  bool is_answered_ = true;
};

}  // namespace

capture::capture(std::unique_ptr<parts> inside) : parts_(std::move(inside)) {}
capture::capture(capture &&) noexcept = default;
capture::~capture() = default;

capture capture::read(const std::string &text, const std::string &file) {
  return capture(std::make_unique<parts>(capture_reader(text, file).read()));
}

const std::string &capture::function() const {
  return parts_->function;
}

const std::vector<plugin_event> &capture::events() const {
  return parts_->acts;
}

bool capture::has_returned() const {
  return parts_->has_returned;
}

}  // namespace yfw
