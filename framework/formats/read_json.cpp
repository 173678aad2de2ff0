// Strings are searched by vectors of bytes, which reads beyond the end of a text: only here, where there is room for
// it, so that the parser's code has a namespace of its own.
#if defined(__SSE2__)
#define RAPIDJSON_SSE2
#elif defined(__ARM_NEON)
#define RAPIDJSON_NEON
#endif
#define RAPIDJSON_NAMESPACE_BEGIN \
  namespace rapidjson {           \
  inline namespace vectors {
#define RAPIDJSON_NAMESPACE_END \
  }                             \
  }
#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <tuple>

#include "document_internal.hpp"
#include "tree_builder.hpp"
#include "yfw/error.hpp"
#include "yfw/internal/text.hpp"

namespace yfw {

namespace {

// A member of a JSON object: data, or the annotation of data (RFC 7952, section 5.2), whose name then is without '@'.
struct member {
  std::string_view tag;  // ends with a zero; "" for the annotation of the object itself
  const char *ns;
  size_t hash;  // of the tag
  size_t offset;
  bool is_annotation;
  size_t first;      // of its nodes among the finished children, or of its operations in `operations_`
  size_t count = 0;  // of these

  bool has_name_of(const member &other) const {
    return tag == other.tag && ns == other.ns;
  }
};

enum class level { object, array, annotation, annotation_array };

struct open_level {
  level kind;
  size_t self;                 // the member that the level is the value of, in `members_`
  const char *ns = nullptr;    // of an object: what members without a module inherit
  size_t first_member = 0;     // of an object: where its members begin in `members_`
  size_t first_operation = 0;  // and their operations
  bool has_objects = false;    // of an array: what its items are
};

class json_reader : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, json_reader> {
 public:
  json_reader(document::parts &parts, const rapidjson::StringStream &stream, size_t begin)
      : parts_(parts),
        builder_(parts),
        stream_(stream),
        begin_(begin),
        has_escapes_(parts.text.find('\\') != std::string::npos) {}

  // The events of RapidJSON's SAX interface. Faults are thrown, so that all return true.

  bool Null() {
    if (in(level::array)) {
      add_null_item();
    } else if (in(level::annotation_array)) {
      add_operation(levels_.back().self);
    } else {
      add_scalar(std::nullopt);
    }
    return true;
  }

  bool Bool(bool value) {
    add_scalar(value ? "true" : "false");
    return true;
  }

  bool RawNumber(const char *text, rapidjson::SizeType size, bool /*copy*/) {
    add_scalar(std::string_view(text, size));
    return true;
  }

  bool String(const char *text, rapidjson::SizeType size, bool /*copy*/) {
    const std::string_view value(text, size);
    check_characters(value);
    if (in(level::annotation)) {
      annotate(value);
    } else {
      add_scalar(value);
    }
    return true;
  }

  bool Key(const char *text, rapidjson::SizeType size, bool /*copy*/) {
    const std::string_view name(text, size);
    check_characters(name);
    if (in(level::annotation)) {
      begin_annotation(name);
    } else {
      begin_member(name);
    }
    return true;
  }

  bool StartObject() {
    if (levels_.empty()) {
      levels_.push_back({level::object, 0});
    } else if (in(level::annotation)) {
      fail("the value of an annotation must not be an object");
    } else if (in(level::annotation_array)) {
      begin_annotations(levels_.back().self);
    } else if (in(level::object) && members_.back().is_annotation) {
      begin_annotations(members_.size() - 1);
    } else {
      begin_object();
    }
    return true;
  }

  bool EndObject(rapidjson::SizeType /*count*/) {
    if (in(level::object)) {
      end_object();
    }
    levels_.pop_back();
    return true;
  }

  bool StartArray() {
    if (!in(level::object)) {
      fail("an array is not allowed in an array or an annotation");
    }
    const bool is_annotation = members_.back().is_annotation;
    if (is_annotation && members_.back().tag.empty()) {
      fail("the value of '@' must be an object");
    }
    levels_.push_back({is_annotation ? level::annotation_array : level::array, members_.size() - 1});
    return true;
  }

  bool EndArray(rapidjson::SizeType /*count*/) {
    levels_.pop_back();
    return true;
  }

  void finish() {
    builder_.finish();
  }

 private:
  bool in(level kind) const {
    return !levels_.empty() && levels_.back().kind == kind;
  }

  size_t offset() const {
    return begin_ + stream_.Tell();
  }

  [[noreturn]] void fail(const std::string &text) {
    builder_.fail(offset(), text);
  }

  // Escapes can spell what the text itself may not hold.
  void check_characters(std::string_view text) {
    if (!has_escapes_) {
      return;
    }
    if (const text_fault fault = first_fault(text); fault.kind != bad_text::none) {
      fail("an escape in a string " + std::string(fault_words(fault.kind)));
    }
  }

  std::string_view module_ns(std::string_view module) {
    const std::string_view ns = parts_.modules->ns_of_module(module);
    if (ns.empty()) {
      fail("unknown module " + in_quotes(module) + did_you_mean(parts_.modules->modules(), module));
    }
    return ns;
  }

  // Data -------------------------------------------------------------------------------------------------------------

  void begin_member(std::string_view name) {
    const bool is_annotation = name.starts_with('@');
    const std::string_view plain = name.substr(is_annotation ? 1 : 0);
    const size_t colon = plain.find(':');
    const bool has_module = colon != std::string_view::npos;
    const std::string_view tag = plain.substr(has_module ? colon + 1 : 0);
    if ((tag.empty() && name != "@") || tag.find(':') != std::string_view::npos) {
      fail("invalid name " + in_quotes(name));
    }
    const char *ns = has_module ? module_ns(plain.substr(0, colon)).data() : levels_.back().ns;
    if (ns == nullptr && name != "@") {
      fail(in_quotes(name) + " has no module name" + module_hint(tag));
    }
    members_.push_back({{parts_.arena.text(tag), tag.size()},
                        ns,
                        std::hash<std::string_view>()(tag),
                        offset(),
                        is_annotation,
                        is_annotation ? operations_.size() : builder_.finished().size()});
  }

  std::string module_hint(std::string_view tag) const {
    const lysc_node *known = parts_.modules->find("/" + std::string(tag), "");
    return known == nullptr ? "" : ", expected '" + std::string(module_name(known)) + ':' + std::string(tag) + "'";
  }

  // The member that a value here belongs to.
  member &owner() {
    return in(level::array) ? members_[levels_.back().self] : members_.back();
  }

  // Opens the next node of a member. Each has a tag of its own: the first the member's, the others copies.
  void open_node(member &of) {
    const char *tag = of.count == 0 ? of.tag.data() : parts_.arena.text(of.tag);
    ++of.count;
    builder_.open(tag, of.ns, in(level::array) ? offset() : of.offset);
  }

  void begin_object() {
    check_item(true);
    const size_t self = in(level::array) ? levels_.back().self : members_.size() - 1;
    const char *ns = members_[self].ns;
    open_node(members_[self]);
    levels_.push_back({level::object, self, ns, members_.size(), operations_.size()});
  }

  void add_scalar(std::optional<std::string_view> text) {
    if (in(level::annotation)) {
      fail_on_operation();
    } else if (in(level::annotation_array) || (in(level::object) && members_.back().is_annotation)) {
      fail("an annotation must be an object");
    } else {
      check_item(false);
      add_leaf(text);
    }
  }

  void add_leaf(std::optional<std::string_view> text) {
    open_node(owner());
    if (text) {
      builder_.current().value = parts_.arena.text(*text);
    }
    builder_.close();
  }

  // The items of an array are all objects (a list) or none is (a leaf-list).
  void check_item(bool is_object) {
    if (!in(level::array)) {
      return;
    }
    if (owner().count != 0 && levels_.back().has_objects != is_object) {
      fail("an array must hold objects or values, not both");
    }
    levels_.back().has_objects = is_object;
  }

  // `[null]` is the value of a leaf of type empty (RFC 7951, section 6.9).
  void add_null_item() {
    const lysc_node *schema = builder_.schema_of(owner().tag, owner().ns);
    if (owner().count != 0 || (schema != nullptr && !parts_.modules->check_value(schema, "").ok)) {
      fail("null is not allowed in the array of " + in_quotes(owner().tag));
    }
    add_leaf("");
  }

  // Sorts the members of the object that ends, so that equal names are neighbours, data before its annotation.
  void end_object() {
    const size_t first = levels_.back().first_member;
    sorted_.clear();
    for (const member &each : std::span(members_).subspan(first)) {
      sorted_.push_back(&each);
    }
    std::ranges::sort(sorted_, [](const member *a, const member *b) {
      return std::tie(a->hash, a->ns, a->tag, a->is_annotation) < std::tie(b->hash, b->ns, b->tag, b->is_annotation);
    });
    const member *before = nullptr;
    for (const member *each : sorted_) {
      const bool is_same = before != nullptr && before->has_name_of(*each);
      if (is_same && before->is_annotation == each->is_annotation) {
        builder_.fail(std::max(before->offset, each->offset), in_quotes(each->tag) + " is given twice");
      }
      if (each->is_annotation) {
        apply(*each, is_same ? before : nullptr);
      }
      before = each;
    }
    members_.erase(members_.begin() + static_cast<ptrdiff_t>(first), members_.end());
    operations_.resize(levels_.back().first_operation);
    if (builder_.is_open()) {
      builder_.close();
    }
  }

  // Annotations ------------------------------------------------------------------------------------------------------

  void add_operation(size_t annotation) {
    operations_.push_back(no_operation);
    ++members_[annotation].count;
  }

  void begin_annotations(size_t annotation) {
    if (members_[annotation].tag.empty() && !builder_.is_open()) {
      fail("'@' must be inside the object that it annotates");
    }
    add_operation(annotation);
    is_operation_ = false;
    levels_.push_back({level::annotation, annotation});
  }

  void begin_annotation(std::string_view name) {
    const size_t colon = name.find(':');
    if (colon == std::string_view::npos) {
      fail("annotation " + in_quotes(name) + " has no module name");
    }
    is_operation_ = module_ns(name.substr(0, colon)) == netconf_ns && name.substr(colon + 1) == "operation";
  }

  void annotate(std::string_view value) {
    if (!is_operation_) {
      return;
    }
    if (operations_.back() != no_operation) {
      fail("operation is given twice");
    }
    operations_.back() = operation_number(value);
    if (operations_.back() == no_operation) {
      fail(not_an_operation(value));
    }
  }

  void fail_on_operation() {
    if (is_operation_) {
      fail("the value of 'ietf-netconf:operation' must be a string");
    }
  }

  // Gives the operations of an annotation to the nodes that it is about.
  void apply(const member &annotation, const member *data) {
    if (annotation.tag.empty()) {
      builder_.current().given_operation = operations_[annotation.first];
      return;
    }
    const lysc_node *schema = builder_.schema_of(annotation.tag, annotation.ns);
    if (is_container(schema) || is_list(schema)) {
      builder_.fail(annotation.offset, "the annotation of " + in_quotes(annotation.tag) + " must be inside it, as '@'");
    }
    const size_t count = data == nullptr ? 1 : data->count;
    if (annotation.count > count) {
      builder_.fail(annotation.offset, "more annotations than values of " + in_quotes(annotation.tag));
    }
    for (size_t i = 0; i < annotation.count; ++i) {
      const uint8_t operation = operations_[annotation.first + i];
      if (data != nullptr) {
        builder_.finished()[data->first + i].given_operation = operation;
      } else if (operation != no_operation) {
        builder_.open(annotation.tag.data(), annotation.ns, annotation.offset).given_operation = operation;
        builder_.close();
      }
    }
  }

  document::parts &parts_;
  tree_builder builder_;
  const rapidjson::StringStream &stream_;
  size_t begin_;
  bool has_escapes_;
  std::vector<open_level> levels_;
  std::vector<member> members_;      // of all open objects
  std::vector<uint8_t> operations_;  // that annotations in the open objects give
  std::vector<const member *> sorted_;
  bool is_operation_ = false;  // whether the latest annotation is an operation
};

}  // namespace

// RapidJSON's reason, but for a control character, which it takes for an escape, and what stands at its place.
static std::string words(rapidjson::ParseErrorCode code, std::string_view text, size_t at) {
  const std::string reason = code == rapidjson::kParseErrorStringEscapeInvalid
                                 ? "a string holds an unknown escape or a control character"
                                 : plain_words(rapidjson::GetParseError_En(code));
  constexpr std::string_view ends = " \t\r\n,:{}[]";
  size_t begin = at;
  while (begin > 0 && at - begin < 40 && ends.find(text[begin - 1]) == std::string_view::npos) {
    --begin;
  }
  const std::string_view found = text.substr(begin, text.find_first_of(ends, std::max(at, begin + 1)) - begin);
  return reason + " at " + in_quotes(found.substr(0, 60));
}

void read_json(document::parts &parts, size_t begin) {
  // Characters were checked before; escapes are checked one by one. Iterative, so that depth costs no stack.
  constexpr unsigned options = rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag;
  constexpr size_t vector_bytes = 16;
  parts.text.reserve(parts.text.size() + vector_bytes);
  rapidjson::StringStream stream(parts.text.c_str() + begin);
  rapidjson::Reader parser;
  json_reader reader(parts, stream, begin);
  const rapidjson::ParseResult result = parser.Parse<options>(stream, reader);
  if (result.IsError()) {
    const bool is_end = begin + result.Offset() >= parts.text.size();
    parts.fail(begin + result.Offset(),
               is_end ? "the text ends inside a value" : words(result.Code(), parts.text, begin + result.Offset()));
  }
  reader.finish();
  parts.text = {};
}

}  // namespace yfw
