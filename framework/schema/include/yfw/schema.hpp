// The YANG modules in force, and the questions that are asked about them.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/error.hpp"

struct lysc_ident;
struct lysc_node;
struct lysc_type;

namespace yfw {

enum class json_kind { string, number, boolean, empty };

struct checked_value {
  bool ok = false;
  std::string canonical;      // RFC 7950, section 9; identities without prefix
  rejected_value rejected{};  // when not ok: "invalid value 'x', expected 'a', 'b'"
};

// Namespaces by prefix, for identities in values; none when the prefix is not known.
using prefix_resolver = std::function<std::optional<std::string_view>(std::string_view prefix)>;

// Owns a libyang context that never changes after loading, so that a const schema may be shared by threads that only
// look up. Nodes are libyang's compiled nodes; they and all returned views live as long as the schema. "Node" means
// data nodes: choices and cases are transparent, RPCs and notifications are not there.
class schema {
 public:
  // Loads each module found as *.yang in the directories, its newest revision, with all features. Throws `error` with
  // libyang's message, and file and line where it tells them, also when a directory is missing or holds no module.
  static schema load(const std::vector<std::filesystem::path> &directories);

  schema(schema &&) noexcept;
  schema &operator=(schema &&) noexcept;
  ~schema();

  // A top-level node or a child; null when there is none. `child` of null is `top`. Constant time.
  const lysc_node *top(std::string_view ns, std::string_view name) const;
  const lysc_node *child(const lysc_node *parent, std::string_view ns, std::string_view name) const;

  // The node of an absolute path of plain names, /library/book/price, whose last name is in `ns` (any when empty) while
  // the others may be in any. Null when there is none or more than one.
  const lysc_node *find(std::string_view path, std::string_view ns) const;

  // All nodes of an absolute path of plain names.
  std::vector<const lysc_node *> find_all(std::string_view path) const;

  // Children in the order of the module; of null: the top-level nodes of all modules.
  const std::vector<const lysc_node *> &children(const lysc_node *parent) const;

  // What is wrong with a name that none of the parents has below it, null for the top: "'pice' is not a child of
  // '/library/book'; did you mean 'price'?", or "; 'price' is defined in module 'shop'" when the name is there, of
  // other modules than the one that is meant. `written` is the name as a message shows it: "'m:pice'".
  std::string unknown_name(const std::vector<const lysc_node *> &parents, std::string_view name,
                           const std::string &written) const;

  // Between the name of a module and its namespace, "" when unknown. `ietf-netconf` and `ietf-restconf`, the modules of
  // the envelopes, are always known. The views end with a zero.
  std::string_view ns_of_module(std::string_view module) const;
  std::string_view module_of_ns(std::string_view ns) const;
  std::vector<std::string_view> modules() const;

  // Of text forms, the allowed ones: names of enums, identities (without prefix) and bits, "true" and "false"; those of
  // all members for a union. Empty for leaves with other types.
  std::vector<std::string> allowed_values(const lysc_node *leaf) const;

  // Whether `text` is a value of the leaf or leaf-list. An identity may be bare or have a prefix, which `prefixes`
  // resolves; without `prefixes` it is the name of a module. References (leafref, instance-identifier) are checked for
  // form only.
  checked_value check_value(const lysc_node *leaf, std::string_view text, const prefix_resolver &prefixes = {}) const;

  // How RFC 7951, section 6, writes that value: by the first type of a union that takes it.
  json_kind json_type(const lysc_node *leaf, std::string_view value) const;

  // The module of the identity that `value`, without prefix, names as a value of the leaf; "" when it names none.
  std::string_view identity_module(const lysc_node *leaf, std::string_view value) const;

 private:
  struct parts;
  explicit schema(std::unique_ptr<parts> inside);
  std::unique_ptr<parts> parts_;
};

// What a node is. All are false for null.
bool is_list(const lysc_node *node);
bool is_leaf(const lysc_node *node);
bool is_leaf_list(const lysc_node *node);
bool is_container(const lysc_node *node);
bool holds_value(const lysc_node *node);  // a leaf or leaf-list
bool is_config(const lysc_node *node);
bool is_key(const lysc_node *node);

std::string_view name(const lysc_node *node);
std::string_view ns(const lysc_node *node);
std::string_view module_name(const lysc_node *node);
std::string_view module_prefix(const lysc_node *node);  // that the module gives itself

// The data node above, or null.
const lysc_node *parent(const lysc_node *node);

// Whether the node is `top` or stands below it; `top` may be a choice or a case.
bool is_within(const lysc_node *node, const lysc_node *top);

// The names of a list's keys in the order of its key statement; none for other nodes.
std::vector<std::string_view> keys(const lysc_node *list);

// /library/book/price, and /library:library/book/shop:price with the module where it changes (RFC 7951, section 4).
std::string path(const lysc_node *node);
std::string qualified_path(const lysc_node *node);

// The name nearest to `word` by edit distance; "" when none is near.
std::string_view closest(const std::vector<std::string_view> &names, std::string_view word);

// The end of a message on an unknown word: "; did you mean 'x'?" with the name nearest to it, or "" when none is near.
std::string did_you_mean(const std::vector<std::string_view> &names, std::string_view word);

}  // namespace yfw
