#include "capture_writer.hpp"

#include <cstdio>

#include "capture_text.hpp"
#include "yfw/error.hpp"
#include "yfw/node.hpp"
#include "yfw/schema.hpp"

namespace yfw {
namespace {

bool holds_captures(const std::filesystem::path &directory) {
  for (const auto &entry : std::filesystem::directory_iterator(directory)) {
    if (entry.path().extension() == ".capture") {
      return true;
    }
  }
  return false;
}

std::string numbered(unsigned number) {
  std::string text = std::to_string(number);
  return text.insert(0, text.size() < 4 ? 4 - text.size() : 0, '0');
}

capture_state::text_filter filter_of(const capture_session::parts &session) {
  return session.names == nullptr
             ? capture_state::text_filter()
             : [names = session.names.get()](std::string_view text) { return names->replaced(text); };
}

const yfw_node_t &root_of(const yfw_node_t &node) {
  return extra(node).parent == nullptr ? node : root_of(*extra(node).parent);
}

}  // namespace

capture_session::capture_session(std::filesystem::path directory, bool is_anonymous)
    : parts_(std::make_unique<parts>()) {
  std::error_code failed;
  std::filesystem::create_directories(directory, failed);
  if (failed) {
    throw error(place{directory.string()}, "cannot be created: " + failed.message());
  }
  if (holds_captures(directory)) {
    throw error(place{directory.string()}, "holds captures already; name another directory or remove them");
  }
  parts_->directory = std::move(directory);
  parts_->names = is_anonymous ? std::make_unique<anonymiser>() : nullptr;
  install_call_tap(parts_.get());
}

capture_session::~capture_session() {
  install_call_tap(nullptr);
}

unsigned capture_session::count() const {
  return parts_->count;
}

// A key may be the value of other nodes than its entry, so that the whole document is searched, once; dispatched nodes
// always are, since a later document may be at the address of an earlier one.
void capture_session::parts::learn_keys(const context &ctx, const yfw_node_t *node) {
  for (const yfw_node_t *above : ctx.hierarchy) {
    if (const yfw_node_t &root = root_of(*above); learned.insert(&root).second) {
      names->learn_keys(root);
    }
    for (const yfw_node_t &below : children(*above)) {
      if (children(below).empty()) {
        names->learn_keys(below);
      }
    }
  }
  if (node != nullptr) {
    names->learn_keys(*node);
  }
}

std::unique_ptr<tapped_call> capture_session::parts::begin(context &ctx, call_form form, const std::string &function,
                                                           yfw_node_t *node) {
  if (names != nullptr) {
    learn_keys(ctx, node);
  }
  return std::make_unique<capture_writer>(ctx, *this, form, function, node);
}

capture_writer::capture_writer(context &ctx, capture_session::parts &session, call_form form,
                               const std::string &function, yfw_node_t *node)
    : ctx_(ctx),
      file_((session.directory / (numbered(++session.count) + "-" + function + ".capture")).string()),
      out_(file_, std::ios::binary),
      state_(ctx.record, ctx.output_root, filter_of(session)) {
  ctx_.observer = this;
  write_head(form, function, node);
}

capture_writer::~capture_writer() {
  ctx_.observer = nullptr;
}

void capture_writer::write_head(call_form form, const std::string &function, yfw_node_t *node) {
  write("ymap-capture 1");
  write("function " + function + " form=" + std::string(to_string(form)));
  write_record();
  write_above();
  write(state_.node_line(ctx_.output_root, "out"));
  if (node != nullptr) {
    state_.add_tree(*node);
    write_tree(*node);
  }
  write_stack();
}

void capture_writer::write_record() {
  std::vector<std::string> made;
  const std::string current = state_.name_of(ctx_.record.current_list, &made);
  write("record operation=" + std::to_string(ctx_.record.request->operation) + " error-tag=" +
        capture_literal(ctx_.record.error_tag) + " current-list=" + current + field_words(record_fields, ctx_.record));
  write(made);
}

// The nodes above are for the reader: what the plug-in asks of them stands in the answers.
void capture_writer::write_above() {
  for (const yfw_node_t *above : ctx_.hierarchy) {
    std::string line = "above tag=" + capture_literal(above->tag);
    for (const yfw_node_t &key : children(*above)) {
      if (key.value != nullptr && is_key(extra(key).schema)) {
        line += ' ';
        line += state_.value_word(("key." + std::string(key.tag)).c_str(), key.value);
      }
    }
    write(line + " ns=" + capture_literal(above->ns));
  }
}

void capture_writer::write_tree(const yfw_node_t &node) {
  write(state_.node_line(node, state_.name_of(&node)));
  for (const yfw_node_t &below : children(node)) {
    write_tree(below);
  }
}

void capture_writer::write_stack() {
  for (size_t level = 0; level < ctx_.tree_stack.size(); ++level) {
    const yfw_node_t *node = ctx_.tree_stack[level].node;
    const std::string name = node == nullptr ? "null" : "stack" + std::to_string(level);
    if (node != nullptr && !state_.knows(*node)) {
      state_.add_node(*node, name);
      write(state_.node_line(*node, name));
    }
    write("stack " + std::to_string(level) + " node=" + state_.name_of(node));
  }
  write("");
}

uint32_t capture_writer::pass(const abi_call &call, const std::function<uint32_t()> &answer) {
  write(state_.changes("wrote", &call));
  write(state_.call_line(call));
  out_.flush();
  const uint32_t status = answer();
  write_answer(call, status);
  write(state_.changes("set", &call));
  return status;
}

// A call that fails leaves what it was to find as it was.
void capture_writer::write_answer(const abi_call &call, uint32_t status) {
  std::string found = status == 0 ? "" : " status=" + capture_hex(status);
  if (status == 0 && call.text_out != nullptr) {
    found += ' ';
    found += state_.value_word("value", *call.text_out);
  }
  if (status == 0 && call.entry_out != nullptr) {
    found += " entry=" + state_.name_of((*call.entry_out)->node);
  }
  if (status == 0 && call.node_out != nullptr) {
    std::vector<std::string> made;
    found += " node=" + state_.name_of(*call.node_out, &made);
    write(made);
    state_.remember_result(call);
  }
  if (!found.empty()) {
    write("answer" + found);
  }
}

void capture_writer::finish(uint32_t status) {
  write(state_.changes("wrote", nullptr));
  write("return " + capture_hex(status));
  out_.close();
  if (!out_) {
    throw error(place{file_}, "cannot be written");
  }
}

void capture_writer::write(const std::vector<std::string> &lines) {
  for (const std::string &line : lines) {
    write(line);
  }
}

void capture_writer::write(const std::string &line) {
  out_ << line << '\n';
}

}  // namespace yfw
