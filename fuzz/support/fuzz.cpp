#include "fuzz.hpp"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <vector>

#include "yfw/node.hpp"
#include "yfw/writer.hpp"

namespace fuzz {
namespace {

[[noreturn]] void report(const std::string &what) {
  (void)std::fprintf(stderr, "%s\n", what.c_str());
  std::abort();
}

// RFC 7950, section 6.2. JSON can carry other names, of unknown data, which XML cannot.
bool is_identifier(std::string_view name) {
  return std::ranges::all_of(name, [](char c) { return std::isalnum(c) != 0 || c == '_' || c == '-' || c == '.'; }) &&
         std::isdigit(name.front()) == 0 && name.front() != '-' && name.front() != '.';
}

// As it was written, but identities without their prefix.
std::string value_of(const yfw::document &data, const yfw_node_t &leaf) {
  const lysc_node *schema = yfw::extra(leaf).schema;
  const bool is_known = yfw::is_leaf(schema) || yfw::is_leaf_list(schema);
  const yfw::checked_value checked = is_known ? data.check(leaf) : yfw::checked_value();
  const bool is_identity = checked.ok && !modules().identity_module(schema, checked.canonical).empty();
  return is_identity ? checked.canonical : leaf.value;
}

void add(yfw::data_tree &to, yfw::data_node *parent, const yfw::document &data, const yfw_node_t &from) {
  if (yfw::is_envelope(from)) {
    for (const yfw_node_t &below : yfw::children(from)) {
      add(to, parent, data, below);
    }
    return;
  }
  if (!is_identifier(from.tag)) {
    throw yfw::error(data.where(from), "is not a name that XML has");
  }
  yfw::data_node &made = to.add(parent, from.ns, from.tag);
  if (from.value != nullptr) {
    to.set_value(made, value_of(data, from));
  }
  if (const uint8_t operation = yfw::extra(from).given_operation; operation != yfw::no_operation) {
    made.operation = operation;
  }
  for (const yfw_node_t &below : yfw::children(from)) {
    add(to, &made, data, below);
  }
}

// The line with nothing in place of a blank value: in XML it is layout, or none.
std::string without_blank(const std::string &line) {
  const bool is_json = line.ends_with('"');
  const size_t mark = is_json ? line.find("\": \"") : line.find('>');
  const size_t begin = mark + (is_json ? 4 : 1);
  const size_t end = is_json ? line.size() - 1 : line.rfind("</");
  const bool has_value = mark != std::string::npos && end != std::string::npos && begin <= end;
  const bool is_blank = has_value && line.find_first_not_of(" \t\r", begin) >= end;
  return is_blank ? line.substr(0, mark) + (is_json ? "\": null" : "/>") : line;
}

// The order of siblings may change on the way through JSON, where a node without value is told by its annotation.
std::string sorted(const std::string &text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    line = line.ends_with(',') ? line.substr(0, line.size() - 1) : line;
    lines.push_back(without_blank(line));
  }
  std::ranges::sort(lines);
  std::string result;
  for (const std::string &line : lines) {
    result += line + '\n';
  }
  return result;
}

void require_kept(std::string_view what, const std::string &expected, const std::string &text,
                  std::string (*written)(const yfw::data_tree &)) {
  const std::string again = written(tree_of(yfw::document::read(text, "what was written", modules())));
  require_same(what, sorted(expected), sorted(again));
}

}  // namespace

const yfw::schema &modules() {
  static const yfw::schema loaded = yfw::schema::load({YMAP_FUZZ_YANG});
  return loaded;
}

const yfw::plugin &mapping() {
  static const yfw::plugin loaded = yfw::plugin::load(YMAP_FUZZ_PLUGIN);
  return loaded;
}

void require_same(std::string_view what, const std::string &expected, const std::string &actual) {
  if (expected != actual) {
    report(std::string(what) + "\n--- expected\n" + expected + "\n--- actual\n" + actual);
  }
}

void require_printable(const std::string &message) {
  for (const char c : message) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
      report("a message with a control character: " + message);
    }
  }
}

yfw::document read_document(const std::string &text, char first) {
  const size_t start = text.find_first_not_of(" \t\r\n");
  if (start == std::string::npos || text[start] != first) {
    throw yfw::error("the other format");
  }
  return yfw::document::read(text, file, modules());
}

yfw::data_tree tree_of(const yfw::document &data) {
  yfw::data_tree tree(modules());
  for (const yfw_node_t &root : data.roots()) {
    add(tree, nullptr, data, root);
  }
  return tree;
}

std::string xml_of(const yfw::data_tree &tree) {
  std::ostringstream text;
  write_xml(text, tree, {.wrappers = {{"data", yfw::netconf_ns}}});
  return text.str();
}

std::string json_of(const yfw::data_tree &tree) {
  std::ostringstream text;
  write_json(text, tree);
  return text.str();
}

void require_read_back(const yfw::data_tree &tree) {
  std::string xml;
  std::string json;
  if (refusal_of([&] {
        xml = xml_of(tree);
        json = json_of(tree);
      })) {
    return;
  }
  try {
    require_kept("XML, read again", xml, xml, xml_of);
    require_kept("XML of what was written as JSON", xml, json, xml_of);
    require_kept("JSON, read again", json, json, json_of);
    require_kept("JSON of what was written as XML", json, xml, json_of);
  } catch (const yfw::error &refused) {
    report("what was written is refused: " + std::string(refused.what()) + '\n' + xml + json);
  }
}

}  // namespace fuzz
