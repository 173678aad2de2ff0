// The inside of a document, shared by the readers.
#pragma once

#include <pugixml.hpp>
#include <span>
#include <string>
#include <vector>

#include "yfw/document.hpp"
#include "yfw/node.hpp"

namespace yfw {

inline constexpr std::string_view xml_ns = "http://www.w3.org/XML/1998/namespace";

struct document::parts {
  std::string text;  // XML: parsed in place and pointed into by the nodes; JSON: released after reading
  std::string file;
  data_format format = data_format::xml;
  const schema *modules = nullptr;
  read_limits limits;
  unsigned first_line = 1;
  std::vector<uint32_t> newlines;  // offsets of the newlines as the text was before parsing
  node_arena arena;
  pugi::xml_document xml;
  std::span<yfw_node_t> roots;

  unsigned line(size_t offset) const;

  // Throws `error` at that byte; `path` is that of the data around it.
  [[noreturn]] void fail(size_t offset, const std::string &text, std::string path = {}) const;
};

// Refuses what pugixml would let pass or drop: document types, unknown entities, references to characters that YANG
// has not, '<' in attribute values, "--" in comments, unfinished constructs. Whether there are comments, CDATA sections
// or processing instructions, which can split a text.
bool check_markup(const document::parts &parts, size_t begin);

// Fill `roots` from `text`, which begins at `begin` with '<' or '{' after blanks.
void read_xml(document::parts &parts, size_t begin);
void read_json(document::parts &parts, size_t begin);

}  // namespace yfw
