#include "write_buffer.hpp"

namespace yfw {

namespace {

constexpr byte_set json_escaped_bytes("\"\\\t\n\r");

class json_writer {
 public:
  json_writer(std::ostream &out, const data_tree &tree, const write_options &options)
      : tree_(tree),
        is_pretty_(options.pretty),
        default_operation_(options.default_operation),
        out_(out, options.pretty) {}

  void write() {
    out_ << '{';
    write_members(tree_.first(), 1, "", default_operation_);
    end(0, '}', tree_.first() == nullptr);
    if (is_pretty_) {
      out_ << '\n';
    }
    out_.flush();
  }

 private:
  static bool is_value_node(const data_node &node) {
    return node.first_child == nullptr && (node.value || holds_value(node.schema));
  }

  static bool is_array(const data_node &group) {
    return is_list(group.schema) || is_leaf_list(group.schema) || group.next_entry != nullptr;
  }

  void begin(size_t depth, bool &is_first) {
    out_ << (is_first ? "" : ",");
    out_.line(depth);
    is_first = false;
  }

  void end(size_t depth, char bracket, bool is_empty) {
    if (!is_empty) {
      out_.line(depth);
    }
    out_ << bracket;
  }

  // "name": or "@name":, with the module where it is not that of the object around.
  void write_name(const data_node &node, std::string_view outer_ns, bool is_annotation) {
    out_ << (is_annotation ? "\"@" : "\"");
    if (node.ns != outer_ns) {
      const std::string_view module = tree_.modules().module_of_ns(node.ns);
      if (module.empty()) {
        throw error({"", 0, path(node)}, "unknown namespace " + in_quotes(node.ns));
      }
      out_ << module << ':';
    }
    escape(node.tag);
    out_ << (is_pretty_ ? "\": " : "\":");
  }

  void write_members(const data_node *first, size_t depth, std::string_view ns, uint32_t operation) {
    bool is_first = true;
    write_members(first, depth, ns, operation, is_first);
  }

  void write_members(const data_node *first, size_t depth, std::string_view ns, uint32_t operation, bool &is_first) {
    for (const data_node *group = first; group != nullptr; group = group->next) {
      const bool has_operations = is_value_node(*group) && has_operation(*group, operation);
      if (!has_operations || group->value) {
        begin(depth, is_first);
        write_name(*group, ns, false);
        write_group(*group, depth, operation);
      }
      if (has_operations) {
        begin(depth, is_first);
        write_name(*group, ns, true);
        write_operations(*group, operation);
      }
    }
  }

  static bool has_operation(const data_node &group, uint32_t outer) {
    const data_node *node = &group;
    while (node != nullptr && operation_in_force(*node, outer) == outer) {
      node = node->next_entry;
    }
    return node != nullptr;
  }

  void write_group(const data_node &group, size_t depth, uint32_t operation) {
    if (!is_array(group) || !has_content(group)) {
      write_node(group, depth, operation);
      return;
    }
    out_ << '[';
    bool is_first = true;
    for (const data_node *node = &group; node != nullptr; node = node->next_entry) {
      begin(depth + 1, is_first);
      write_node(*node, depth + 1, operation);
    }
    end(depth, ']', false);
  }

  // A leaf-list that is asked for as a whole is null, not an array.
  static bool has_content(const data_node &group) {
    return group.value || group.next_entry != nullptr || !is_leaf_list(group.schema);
  }

  void write_node(const data_node &node, size_t depth, uint32_t outer_operation) {
    if (is_value_node(node)) {
      write_value(node);
      return;
    }
    const uint32_t operation = operation_in_force(node, outer_operation);
    bool is_first = true;
    out_ << '{';
    if (operation != outer_operation) {
      begin(depth + 1, is_first);
      out_ << (is_pretty_ ? "\"@\": " : "\"@\":");
      write_operation(operation);
    }
    write_members(node.first_child, depth + 1, node.ns, operation, is_first);
    end(depth, '}', is_first);
  }

  void write_operation(uint32_t operation) {
    out_ << (is_pretty_ ? "{\"ietf-netconf:operation\": \"" : "{\"ietf-netconf:operation\":\"")
         << operation_word(operation) << "\"}";
  }

  // The annotation of a leaf is an object; that of a leaf-list an array with null for values without.
  void write_operations(const data_node &group, uint32_t outer) {
    if (!is_array(group) || !has_content(group)) {
      write_operation(operation_in_force(group, outer));
      return;
    }
    char before = '[';
    for (const data_node *node = &group; node != nullptr; node = node->next_entry) {
      out_ << before;
      before = ',';
      if (operation_in_force(*node, outer) == outer) {
        out_ << "null";
      } else {
        write_operation(operation_in_force(*node, outer));
      }
    }
    out_ << ']';
  }

  void write_value(const data_node &node) {
    if (!node.value) {
      out_ << "null";
      return;
    }
    const json_kind kind = tree_.modules().json_type(node.schema, *node.value);
    const bool is_boolean = kind == json_kind::boolean && (*node.value == "true" || *node.value == "false");
    if (is_boolean || (kind == json_kind::number && is_integer(*node.value))) {
      out_ << *node.value;
    } else if (kind == json_kind::empty) {
      out_ << "[null]";
    } else {
      check_text(node);
      const std::string_view module = foreign_module(tree_.modules(), node);
      out_ << '"' << module << (module.empty() ? "" : ":");
      escape(*node.value);
      out_ << '"';
    }
  }

  // What JSON takes as a whole number; anything else would break the text and stays a string.
  static bool is_integer(std::string_view text) {
    if (text.starts_with('-')) {
      text.remove_prefix(1);
    }
    const bool has_digits = !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
    return has_digits && (text.size() == 1 || text.front() != '0');
  }

  void escape(std::string_view text) {
    while (!text.empty()) {
      const size_t plain = json_escaped_bytes.length_without(text);
      out_ << text.substr(0, plain);
      if (plain < text.size()) {
        const char c = text[plain];
        out_ << '\\' << (c == '\t' ? 't' : c == '\n' ? 'n' : c == '\r' ? 'r' : c);
      }
      text.remove_prefix(std::min(plain + 1, text.size()));
    }
  }

  const data_tree &tree_;
  bool is_pretty_;
  uint32_t default_operation_;
  write_buffer out_;
};

}  // namespace

void write_json(std::ostream &out, const data_tree &tree, const write_options &options) {
  json_writer(out, tree, options).write();
}

}  // namespace yfw
