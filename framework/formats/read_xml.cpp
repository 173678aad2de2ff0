#include <algorithm>
#include <cstring>

#include "document_internal.hpp"
#include "tree_builder.hpp"
#include "yfw/error.hpp"
#include "yfw/internal/text.hpp"

namespace yfw {

namespace {

// A namespace declaration in scope. Prefix "" is the default namespace, which "" as namespace takes back.
struct declaration {
  std::string_view prefix;
  const char *ns;
};

// An element that is not closed yet.
struct open_element {
  pugi::xml_node next;            // the child to look at next
  size_t outer_declarations = 0;  // how many declarations are in scope around the element
  const char *text = nullptr;
  bool is_in_filter = false;  // a filter, or inside one
  bool has_elements = false;
};

class xml_reader {
 public:
  explicit xml_reader(document::parts &parts) : parts_(parts), builder_(parts) {}

  void read(pugi::xml_node root) {
    open(root);
    while (!open_.empty()) {
      step();
    }
    builder_.finish();
  }

 private:
  size_t offset_of(const char *text) const {
    return static_cast<size_t>(text - parts_.text.data());
  }

  // Takes the next child of the innermost open element, or closes the element after its last one.
  void step() {
    const pugi::xml_node next = open_.back().next;
    if (!next) {
      close();
      return;
    }
    open_.back().next = next.next_sibling();
    if (next.type() == pugi::node_element) {
      fail_on_text(open_.back().text);
      open_.back().text = nullptr;
      open_.back().has_elements = true;
      open(next);
    } else {
      add_text(next.value());
    }
  }

  void open(pugi::xml_node element) {
    const char *name = element.name();
    const size_t offset = offset_of(name);
    const size_t outer = declarations_.size();
    const bool has_attributes = static_cast<bool>(element.first_attribute());
    if (has_attributes) {
      declare(element, offset);
    }
    const char *colon = std::strchr(name, ':');
    const char *tag = colon == nullptr ? name : colon + 1;
    if (*tag == '\0' || (colon != nullptr && (colon == name || std::strchr(tag, ':') != nullptr))) {
      builder_.fail(offset, "invalid name " + in_quotes(name));
    }
    const char *ns = element_namespace(name, tag, offset);
    builder_.open(tag, ns, offset, element.internal_object());
    if (has_attributes) {
      read_attributes(element);
    }
    const char *value = element.value();
    const bool is_filter = std::strcmp(tag, "filter") == 0 && is_envelope_ns(ns);
    const bool is_inside = is_in_filter();
    open_element &opened = open_.emplace_back();
    opened.next = element.first_child();
    opened.outer_declarations = outer;
    opened.text = *value != '\0' ? value : nullptr;
    opened.is_in_filter = is_filter || is_inside;
  }

  void close() {
    const open_element &element = open_.back();
    pending_node &node = builder_.current();
    if (element.text != nullptr && is_value(node, element.text)) {
      const bool is_joined = element.text == joined_.data();
      node.value = is_joined ? parts_.arena.text(joined_) : element.text;
    }
    declarations_.resize(element.outer_declarations);
    builder_.close();
    open_.pop_back();
  }

  // Blank text is layout, unless it is what a leaf may hold.
  bool is_value(const pending_node &node, const char *text) const {
    return !is_blank(std::string_view(text)) ||
           (is_leaf(node.schema) && parts_.modules->check_value(node.schema, text).ok);
  }

  // Text in several parts (around CDATA sections and comments) is joined; there is none around elements.
  void add_text(const char *part) {
    open_element &element = open_.back();
    if (element.has_elements) {
      fail_on_text(part);
    } else if (element.text == nullptr) {
      element.text = part;
    } else {
      if (element.text != joined_.data()) {
        joined_ = element.text;
      }
      joined_ += part;
      element.text = joined_.data();
    }
  }

  void fail_on_text(const char *text) {
    if (text != nullptr && !is_blank(std::string_view(text))) {
      const bool is_joined = text == joined_.data();
      const size_t offset = is_joined ? builder_.current().offset : offset_of(trimmed(text).data());
      builder_.fail(offset, "text " + in_quotes(trimmed(text)) + " between elements");
    }
  }

  // Puts the element's namespace declarations in scope, and refuses repeated and too many attributes.
  void declare(pugi::xml_node element, size_t offset) {
    names_.clear();
    for (const pugi::xml_attribute attribute : element.attributes()) {
      const std::string_view name = attribute.name();
      if (std::ranges::find(names_, name) != names_.end()) {
        builder_.fail(offset, "attribute " + in_quotes(name) + " is given twice");
      }
      names_.push_back(name);
      if (names_.size() > parts_.limits.attributes) {
        builder_.fail(offset, "more than " + std::to_string(parts_.limits.attributes) + " attributes");
      }
      if (name == "xmlns") {
        declarations_.push_back({"", attribute.value()});
      } else if (name.starts_with("xmlns:")) {
        add_prefix(name.substr(6), attribute.value(), offset);
      }
    }
    if (declarations_.size() > parts_.limits.declarations) {
      builder_.fail(offset,
                    "more than " + std::to_string(parts_.limits.declarations) + " namespace declarations in scope");
    }
  }

  void add_prefix(std::string_view prefix, const char *ns, size_t offset) {
    if (prefix.empty() || *ns == '\0') {
      builder_.fail(offset, "prefix " + in_quotes(prefix) + " is declared without a namespace or a name");
    }
    declarations_.push_back({prefix, ns});
  }

  // The namespace of a prefix; null when it is not declared.
  const char *in_scope(std::string_view prefix) const {
    if (prefix == "xml") {
      return xml_ns.data();
    }
    size_t i = declarations_.size();
    while (i > 0 && declarations_[i - 1].prefix != prefix) {
      --i;
    }
    return i == 0 ? nullptr : declarations_[i - 1].ns;
  }

  const char *namespace_of(std::string_view prefix, size_t offset) {
    const char *ns = in_scope(prefix);
    if (ns == nullptr) {
      builder_.fail(offset, "prefix " + in_quotes(prefix) + " is not declared");
    }
    return ns;
  }

  const char *element_namespace(const char *name, const char *tag, size_t offset) {
    if (tag != name) {
      return namespace_of({name, static_cast<size_t>(tag - name - 1)}, offset);
    }
    const char *ns = in_scope("");
    if ((ns == nullptr || *ns == '\0') && is_in_filter()) {
      return any_namespace(tag, offset);
    }
    if (ns == nullptr || *ns == '\0') {
      builder_.fail(offset, in_quotes(tag) + " has no namespace" + declaration_hint(tag));
    }
    return ns;
  }

  bool is_in_filter() const {
    return !open_.empty() && open_.back().is_in_filter;
  }

  // In a filter a name without namespace is that of any module (RFC 6241, section 6.2.1). It must be one's only.
  const char *any_namespace(std::string_view tag, size_t offset) {
    const pending_node &above = builder_.current();
    std::vector<const lysc_node *> known;
    if (is_envelope_ns(above.ns) || above.schema != nullptr) {
      known = parts_.modules->children(above.schema);
    }
    std::erase_if(known, [&](const lysc_node *node) { return name(node) != tag; });
    if (known.size() != 1) {
      builder_.fail(offset, in_quotes(tag) + " has no namespace, and " +
                                (known.empty() ? "no module has" : "several modules have") + " such a node there");
    }
    return ns(known.front()).data();
  }

  // What would have been right, when just one module has such a node at the top.
  std::string declaration_hint(std::string_view tag) const {
    const lysc_node *known = parts_.modules->find("/" + std::string(tag), "");
    return known == nullptr ? "" : ", expected xmlns=\"" + std::string(ns(known)) + '"';
  }

  // The attributes that are no declarations. Those of messages (message-id, type, select) are left to `attribute`.
  void read_attributes(pugi::xml_node element) {
    for (const pugi::xml_attribute attribute : element.attributes()) {
      const std::string_view name = attribute.name();
      if (name == "xmlns" || name.starts_with("xmlns:")) {
        continue;
      }
      pending_node &node = builder_.current();
      const size_t offset = offset_of(attribute.name());
      const size_t colon = name.find(':');
      const std::string_view ns =
          colon == std::string_view::npos ? std::string_view() : namespace_of(name.substr(0, colon), offset);
      const std::string_view local = name.substr(colon == std::string_view::npos ? 0 : colon + 1);
      if (local == "operation" && ns == netconf_ns) {
        read_operation(node, attribute.value(), offset);
      } else if (name == "operation") {
        builder_.fail(offset, "attribute 'operation' has no namespace, expected nc:operation with xmlns:nc=\"" +
                                  std::string(netconf_ns) + '"');
      } else if (ns != xml_ns && !is_envelope_ns(node.ns)) {
        builder_.fail(offset, "unknown attribute " + in_quotes(name) + ", expected nc:operation");
      }
    }
  }

  void read_operation(pending_node &node, const char *word, size_t offset) {
    if (node.given_operation != no_operation) {
      builder_.fail(offset, "operation is given twice");
    }
    node.given_operation = operation_number(word);
    if (node.given_operation == no_operation) {
      builder_.fail(offset, not_an_operation(word));
    }
  }

  document::parts &parts_;
  tree_builder builder_;
  std::vector<open_element> open_;
  std::vector<declaration> declarations_;
  std::vector<std::string_view> names_;  // of the attributes of one element
  std::string joined_;                   // text in parts of the innermost open element
};

// pugixml's reason in the framework's words; `text` is what stands at its place.
std::string words(pugi::xml_parse_status status, std::string_view text) {
  const std::string_view found = text.substr(0, std::min<size_t>(text.find_first_of("<>", 1), 40));
  if (status == pugi::status_no_document_element) {
    return "the document has no element";
  }
  if (status == pugi::status_end_element_mismatch || status == pugi::status_bad_end_element) {
    return text.size() <= 1 ? "the text ends inside an element"
                            : "'</" + std::string(found) + ">' does not close the open element";
  }
  if (status == pugi::status_out_of_memory) {
    return "out of memory";
  }
  return in_quotes(found) + " is not well-formed XML";
}

// Blanks between elements are layout, but where a text is in several parts one of them may be blank.
void parse(document::parts &parts, size_t begin, bool may_split_text) {
  const unsigned blanks = may_split_text ? pugi::parse_ws_pcdata : pugi::parse_ws_pcdata_single;
  const unsigned options = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_eol | pugi::parse_wconv_attribute |
                           pugi::parse_declaration | blanks | pugi::parse_fragment | pugi::parse_embed_pcdata;
  const size_t size = parts.text.size() - begin;  // and the terminating zero, which pugixml would else make room for
  const pugi::xml_parse_result result =
      parts.xml.load_buffer_inplace(parts.text.data() + begin, size + 1, options, pugi::encoding_utf8);
  if (!result) {
    const size_t at = begin + std::min(static_cast<size_t>(std::max<ptrdiff_t>(result.offset, 0)), size);
    parts.fail(at, words(result.status, std::string_view(parts.text).substr(at)));
  }
}

// A document is in UTF-8 whatever it says (RFC 6241, section 3); one that says something else is not meant so.
void check_declaration(const document::parts &parts, size_t begin, pugi::xml_node declaration) {
  const auto offset = static_cast<size_t>(declaration.name() - parts.text.data());
  if (offset != begin + std::strlen("<?")) {
    parts.fail(offset, "an XML declaration is allowed only at the beginning");
  }
  if (const std::string version = declaration.attribute("version").as_string(); version != "1.0") {
    parts.fail(offset, "invalid XML version " + in_quotes(version) + ", expected '1.0'");
  }
  const std::string encoding = declaration.attribute("encoding").as_string("UTF-8");
  const auto is_same = [](char a, char b) { return (a | 0x20) == (b | 0x20); };
  if (!std::ranges::equal(encoding, std::string_view("utf-8"), is_same)) {
    parts.fail(0, "invalid encoding " + in_quotes(encoding) + ", expected 'UTF-8'");
  }
}

pugi::xml_node single_root(const document::parts &parts, size_t begin) {
  pugi::xml_node root;
  for (const pugi::xml_node node : parts.xml.children()) {
    if (node.type() == pugi::node_declaration) {
      check_declaration(parts, begin, node);
    } else if (node.type() != pugi::node_element) {
      if (!is_blank(std::string_view(node.value()))) {
        parts.fail(static_cast<size_t>(node.value() - parts.text.data()),
                   "text " + in_quotes(trimmed(node.value())) + " outside the root element");
      }
    } else if (root) {
      parts.fail(static_cast<size_t>(node.name() - parts.text.data()),
                 "'<" + std::string(node.name()).substr(0, 80) + ">' is a second root element");
    } else {
      root = node;
    }
  }
  if (!root) {
    parts.fail(parts.text.size(), "the document has no element");
  }
  return root;
}

}  // namespace

void read_xml(document::parts &parts, size_t begin) {
  parse(parts, begin, check_markup(parts, begin));
  xml_reader(parts).read(single_root(parts, begin));
}

}  // namespace yfw
