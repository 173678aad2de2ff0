#include "yfw/document.hpp"

#include <algorithm>
#include <utility>

#include "document_internal.hpp"
#include "yfw/instance_path.hpp"
#include "yfw/internal/text.hpp"

namespace yfw {

unsigned document::parts::line(size_t offset) const {
  const auto after = std::ranges::lower_bound(newlines, offset);
  return static_cast<unsigned>(after - newlines.begin()) + first_line;
}

void document::parts::fail(size_t offset, const std::string &reason, std::string path) const {
  throw error({file, line(offset), std::move(path)}, reason);
}

static void check_characters(document::parts &parts) {
  const std::string &text = parts.text;
  const text_fault fault = first_fault(text, &parts.newlines);
  if (fault.kind != bad_text::none) {
    const bool is_zero = text[fault.offset] == '\0';
    parts.fail(fault.offset,
               is_zero ? "a zero byte is not allowed" : "the text " + std::string(fault_words(fault.kind)));
  }
}

document document::read(std::string text, std::string file, const schema &schema, const read_limits &limits,
                        unsigned first_line) {
  auto inside = std::make_unique<parts>();
  inside->text = std::move(text);
  inside->file = std::move(file);
  inside->modules = &schema;
  inside->limits = limits;
  inside->first_line = first_line;
  if (inside->text.size() > limits.bytes) {
    inside->fail(0, "larger than " + std::to_string(limits.bytes) + " bytes");
  }
  check_characters(*inside);
  constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";
  const size_t begin = inside->text.starts_with(byte_order_mark) ? byte_order_mark.size() : 0;
  const size_t first = inside->text.find_first_not_of(" \t\r\n", begin);
  if (first == std::string::npos) {
    inside->fail(begin, "is empty, expected '<' (XML) or '{' (JSON)");
  }
  if (inside->text[first] == '<') {
    read_xml(*inside, begin);
  } else if (inside->text[first] == '{') {
    inside->format = data_format::json;
    read_json(*inside, begin);
  } else {
    inside->fail(first,
                 "begins with " + in_quotes(inside->text.substr(first, 1)) + ", expected '<' (XML) or '{' (JSON)");
  }
  return document(std::move(inside));
}

document::document(std::unique_ptr<parts> inside) : parts_(std::move(inside)) {}
document::document(document &&) noexcept = default;
document &document::operator=(document &&) noexcept = default;
document::~document() = default;

data_format document::format() const {
  return parts_->format;
}
const std::string &document::file() const {
  return parts_->file;
}
const schema &document::modules() const {
  return *parts_->modules;
}
std::span<yfw_node_t> document::roots() {
  return parts_->roots;
}
std::span<const yfw_node_t> document::roots() const {
  return parts_->roots;
}
unsigned document::line(const yfw_node_t &node) const {
  return parts_->line(extra(node).offset);
}
place document::where(const yfw_node_t &node) const {
  return {parts_->file, line(node), path(node)};
}

static pugi::xml_node element_of(const yfw_node_t &node) {
  return pugi::xml_node(static_cast<pugi::xml_node_struct *>(const_cast<void *>(extra(node).source)));
}

// The namespace of a prefix by the nearest declaration on the element or above it.
static std::optional<std::string_view> declared(pugi::xml_node element, std::string_view prefix) {
  if (prefix == "xml") {
    return xml_ns;
  }
  const std::string name = prefix.empty() ? "xmlns" : "xmlns:" + std::string(prefix);
  for (; element; element = element.parent()) {
    if (const pugi::xml_attribute declaration = element.attribute(name.c_str())) {
      return declaration.value();
    }
  }
  return std::nullopt;
}

std::optional<std::string_view> document::prefix_namespace(const yfw_node_t &node, std::string_view prefix) const {
  if (parts_->format == data_format::xml) {
    return declared(element_of(node), prefix);
  }
  const std::string_view ns = parts_->modules->ns_of_module(prefix);
  return ns.empty() ? std::nullopt : std::optional(ns);
}

std::optional<std::string_view> document::attribute(const yfw_node_t &node, std::string_view ns,
                                                    std::string_view name) const {
  if (parts_->format == data_format::json) {
    return std::nullopt;
  }
  const pugi::xml_node element = element_of(node);
  for (const pugi::xml_attribute each : element.attributes()) {
    const std::string_view full = each.name();
    const size_t colon = full.find(':');
    const bool has_prefix = colon != std::string_view::npos;
    if (full.substr(has_prefix ? colon + 1 : 0) != name || has_prefix == ns.empty()) {
      continue;
    }
    if (!has_prefix || declared(element, full.substr(0, colon)) == ns) {
      return each.value();
    }
  }
  return std::nullopt;
}

checked_value document::check(const yfw_node_t &node) const {
  return parts_->modules->check_value(extra(node).schema, node.value != nullptr ? node.value : "",
                                      [&](std::string_view prefix) { return prefix_namespace(node, prefix); });
}

}  // namespace yfw
