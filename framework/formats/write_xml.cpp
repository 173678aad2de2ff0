#include "write_buffer.hpp"

namespace yfw {

namespace {

constexpr byte_set xml_escaped_bytes("<>&\"\r");

class xml_writer {
 public:
  xml_writer(std::ostream &out, const data_tree &tree, const write_options &options)
      : tree_(tree), options_(options), out_(out, options.pretty) {}

  void write() {
    size_t depth = 0;
    std::string_view ns;
    for (const wrapper &each : options_.wrappers) {
      begin(depth++, each.tag, each.ns, ns);
      write_attributes(each);
      out_ << '>';
      ns = each.ns;
      for (const wrapper &before : each.before) {
        write_element(before, depth, ns);
      }
    }
    write_groups(tree_.first(), depth, ns, options_.default_operation);
    for (auto each = options_.wrappers.rbegin(); each != options_.wrappers.rend(); ++each) {
      end(--depth, each->tag);
    }
    if (options_.pretty) {
      out_ << '\n';
    }
    out_.flush();
  }

 private:
  // "<tag xmlns="…"", without '>'; the namespace is declared when it is not that of the element around.
  void begin(size_t depth, std::string_view tag, std::string_view ns, std::string_view outer_ns) {
    if (is_started_) {
      out_.line(depth);
    }
    is_started_ = true;
    out_ << '<' << tag;
    if (ns != outer_ns) {
      out_ << " xmlns=\"";
      escape(ns);
      out_ << '"';
    }
  }

  void end(size_t depth, std::string_view tag) {
    out_.line(depth);
    out_ << "</" << tag << '>';
  }

  // The outermost wrapper declares the prefix of operations when there are any.
  void write_attributes(const wrapper &element) {
    for (const auto &[name, value] : element.attributes) {
      out_ << ' ' << name << "=\"";
      escape(value);
      out_ << '"';
    }
    if (&element == &options_.wrappers.front() && has_operation(tree_.first(), options_.default_operation)) {
      declare_operations();
    }
  }

  void declare_operations() {
    out_ << " xmlns:nc=\"" << netconf_ns << '"';
    is_nc_declared_ = true;
  }

  void write_element(const wrapper &element, size_t depth, std::string_view outer_ns) {
    begin(depth, element.tag, element.ns, outer_ns);
    write_attributes(element);
    if (element.before.empty() && element.text.empty()) {
      out_ << "/>";
      return;
    }
    out_ << '>';
    escape(element.text);
    for (const wrapper &below : element.before) {
      write_element(below, depth + 1, element.ns);
    }
    if (element.text.empty()) {
      end(depth, element.tag);
    } else {
      out_ << "</" << element.tag << '>';
    }
  }

  static bool has_operation(const data_node *first, uint32_t outer) {
    for (const data_node *group = first; group != nullptr; group = group->next) {
      for (const data_node *node = group; node != nullptr; node = node->next_entry) {
        if (operation_in_force(*node, outer) != outer || has_operation(node->first_child, outer)) {
          return true;
        }
      }
    }
    return false;
  }

  void write_groups(const data_node *first, size_t depth, std::string_view ns, uint32_t operation) {
    each_node(first, [&](const data_node &node) { write_node(node, depth, ns, operation); });
  }

  void write_node(const data_node &node, size_t depth, std::string_view outer_ns, uint32_t outer_operation) {
    begin(depth, node.tag, node.ns, outer_ns);
    const bool was_nc_declared = is_nc_declared_;
    const uint32_t operation = operation_in_force(node, outer_operation);
    if (operation != outer_operation) {
      if (!is_nc_declared_) {
        declare_operations();
      }
      out_ << " nc:operation=\"" << operation_word(operation) << '"';
    }
    if (node.first_child != nullptr) {
      out_ << '>';
      write_groups(node.first_child, depth + 1, node.ns, operation);
      end(depth, node.tag);
    } else {
      write_value(node);
    }
    is_nc_declared_ = was_nc_declared;
  }

  void write_value(const data_node &node) {
    if (!node.value || node.value->empty()) {
      out_ << "/>";
      return;
    }
    check_text(node);
    const std::string_view module = foreign_module(tree_.modules(), node);
    if (!module.empty()) {
      out_ << " xmlns:" << module << "=\"" << tree_.modules().ns_of_module(module) << '"';
    }
    out_ << '>' << module << (module.empty() ? "" : ":");
    escape(*node.value);
    out_ << "</" << node.tag << '>';
  }

  void escape(std::string_view text) {
    while (!text.empty()) {
      const size_t plain = xml_escaped_bytes.length_without(text);
      out_ << text.substr(0, plain);
      if (plain < text.size()) {
        out_ << reference(text[plain]);
      }
      text.remove_prefix(std::min(plain + 1, text.size()));
    }
  }

  static std::string_view reference(char c) {
    switch (c) {
      case '<':
        return "&lt;";
      case '>':
        return "&gt;";
      case '&':
        return "&amp;";
      case '"':
        return "&quot;";
      default:
        return "&#13;";
    }
  }

  const data_tree &tree_;
  const write_options &options_;
  write_buffer out_;
  bool is_started_ = false;
  bool is_nc_declared_ = false;
};

}  // namespace

void write_xml(std::ostream &out, const data_tree &tree, const write_options &options) {
  xml_writer(out, tree, options).write();
}

}  // namespace yfw
