// Evaluates XPath expressions with libyang.
#include <libyang/libyang.h>

#include <array>
#include <memory>

#include "yfw/internal/schema_types.hpp"
#include "yfw/internal/text.hpp"
#include "yfw/query.hpp"

namespace yfw {
namespace {

struct tree_deleter {
  void operator()(lyd_node *tree) const {
    lyd_free_all(tree);
  }
};

// The same data for libyang; each node there knows its original.
class lyd_copy {
 public:
  explicit lyd_copy(const data_tree &data) : modules_(data.modules()) {
    add_level(data.first(), nullptr);
  }

  lyd_node *top() const {
    return top_.get();
  }

 private:
  void add_level(const data_node *first, lyd_node *parent) {
    each_node(first, [&](const data_node &node) {
      lyd_node *copy = known_key(node, parent);
      add_level(node.first_child, copy != nullptr ? copy : added(node, parent));
    });
  }

  // A key is made with its entry.
  static lyd_node *known_key(const data_node &node, lyd_node *parent) {
    for (lyd_node *key = is_key(node.schema) ? lyd_child(parent) : nullptr; key != nullptr; key = key->next) {
      if (key->schema == node.schema) {
        key->priv = const_cast<data_node *>(&node);
        return key;
      }
    }
    return nullptr;
  }

  lyd_node *added(const data_node &node, lyd_node *parent) {
    lyd_node *copy = nullptr;
    if (make(node, parent, &copy) != LY_SUCCESS) {
      throw client_error({"", 0, path(node)}, "cannot be searched: invalid value", error_tag::operation_failed);
    }
    copy->priv = const_cast<data_node *>(&node);
    if (parent == nullptr) {
      lyd_node *first = top_.release();
      lyd_insert_sibling(first, copy, &first);
      top_.reset(first);
    }
    return copy;
  }

  LY_ERR make(const data_node &node, lyd_node *parent, lyd_node **copy) const {
    const std::string tag(node.tag);
    const lys_module *module = node.schema->module;
    if (is_list(node.schema)) {
      return make_entry(node, parent, copy);
    }
    if (!is_leaf(node.schema) && !is_leaf_list(node.schema)) {
      return lyd_new_inner(parent, module, tag.c_str(), 0, copy);
    }
    const std::string value = value_of(node);
    const LY_ERR made = lyd_new_term(parent, module, tag.c_str(), value.c_str(), 0, copy);
    // A value that its type does not allow is still found by its name.
    return made == LY_SUCCESS
               ? made
               : lyd_new_opaq(parent, module->ctx, tag.c_str(), value.c_str(), nullptr, module->name, copy);
  }

  std::string value_of(const data_node &node) const {
    const std::string_view value = node.value.value_or("");
    const std::string_view module = modules_.identity_module(node.schema, value);
    return (module.empty() ? "" : std::string(module) + ":") + std::string(value);
  }

  // libyang takes the values of as many keys as the list has. No predicate could hold a value with both kinds of
  // quotes.
  LY_ERR make_entry(const data_node &entry, lyd_node *parent, lyd_node **copy) const {
    std::array<std::string, 8> values;
    size_t count = 0;
    for (const std::string_view key : keys(entry.schema)) {
      for (const data_node *below = entry.first_child; below != nullptr; below = below->next) {
        if (below->tag == key && is_key(below->schema) && count < values.size()) {
          values[count++] = value_of(*below);
        }
      }
    }
    if (count != keys(entry.schema).size()) {
      return LY_EINVAL;
    }
    return lyd_new_list(parent, entry.schema->module, std::string(entry.tag).c_str(), 0, copy, values[0].c_str(),
                        values[1].c_str(), values[2].c_str(), values[3].c_str(), values[4].c_str(), values[5].c_str(),
                        values[6].c_str(), values[7].c_str());
  }

  const schema &modules_;
  std::unique_ptr<lyd_node, tree_deleter> top_;
};

[[noreturn]] void fail(const ly_ctx *context) {
  const ly_err_item *fault = ly_err_last(context);
  throw client_error({},
                     "the XPath cannot be evaluated: " +
                         plain_words(fault != nullptr && fault->msg != nullptr ? fault->msg : "it selects no nodes"),
                     error_tag::invalid_value);
}

}  // namespace

std::vector<const data_node *> selected_nodes(const data_tree &data, const std::string &qualified_xpath) {
  const ly_ctx *context = data.modules().children(nullptr).front()->module->ctx;
  ly_set *raw = nullptr;
  if (lys_find_xpath(context, nullptr, qualified_xpath.c_str(), 0, &raw) != LY_SUCCESS) {
    fail(context);
  }
  std::unique_ptr<ly_set, set_deleter> set(std::exchange(raw, nullptr));
  const lyd_copy copy(data);
  if (copy.top() == nullptr) {
    return {};
  }
  if (lyd_find_xpath(copy.top(), qualified_xpath.c_str(), &raw) != LY_SUCCESS) {
    fail(context);
  }
  set.reset(raw);
  std::vector<const data_node *> found;
  for (uint32_t i = 0; i < set->count; ++i) {
    if (set->dnodes[i] != nullptr) {
      found.push_back(static_cast<const data_node *>(set->dnodes[i]->priv));
    }
  }
  return found;
}

}  // namespace yfw
