#include <libyang/plugins_types.h>

#include <algorithm>
#include <limits>

#include "schema_parts.hpp"
#include "text.hpp"
#include "yfw/error.hpp"

namespace yfw {

namespace {

template <typename T>
const T &as(const void *record) {
  return *static_cast<const T *>(record);
}

const lysc_type *target(const lysc_type *type) {
  return type->basetype == LY_TYPE_LEAFREF ? as<lysc_type_leafref>(type).realtype : type;
}

// The type of a leaf or leaf-list, null for other nodes.
const lysc_type *type_of(const lysc_node *leaf) {
  const lysc_type *type = is_leaf(leaf)        ? as<lysc_node_leaf>(leaf).type
                          : is_leaf_list(leaf) ? as<lysc_node_leaflist>(leaf).type
                                               : nullptr;
  return type == nullptr ? nullptr : target(type);
}

std::vector<const lysc_type *> members(const lysc_type *type) {
  std::vector<const lysc_type *> result;
  for (const auto *member : array_items(as<lysc_type_union>(type).types)) {
    result.push_back(target(*member));
  }
  return result;
}

bool is_derived(const lysc_ident *identity, const lysc_ident *base) {
  return std::ranges::any_of(array_items(base->derived),
                             [&](const auto *each) { return *each == identity || is_derived(identity, *each); });
}

// The identities that a type allows: those derived from all of its bases (RFC 7950, section 9.10.2), each once.
void add_identities(const lysc_type *type, const lysc_ident *base, std::vector<const lysc_ident *> &found) {
  const auto bases = array_items(as<lysc_type_identityref>(type).bases);
  for (const auto *each : array_items(base->derived)) {
    const bool is_allowed = std::ranges::all_of(bases, [&](const auto *any) { return is_derived(*each, *any); });
    if (is_allowed && std::ranges::find(found, *each) == found.end()) {
      found.push_back(*each);
    }
    add_identities(type, *each, found);
  }
}

std::vector<const lysc_ident *> identities(const lysc_type *type) {
  std::vector<const lysc_ident *> found;
  add_identities(type, as<lysc_type_identityref>(type).bases[0], found);
  return found;
}

void add_names(const lysc_type *type, std::vector<std::string> &names) {
  switch (type->basetype) {
    case LY_TYPE_ENUM:
      for (const auto *item : array_items(as<lysc_type_enum>(type).enums)) {
        names.emplace_back(item->name);
      }
      break;
    case LY_TYPE_BITS:
      for (const auto *item : array_items(as<lysc_type_bits>(type).bits)) {
        names.emplace_back(item->name);
      }
      break;
    case LY_TYPE_IDENT:
      for (const lysc_ident *identity : identities(type)) {
        names.emplace_back(identity->name);
      }
      break;
    case LY_TYPE_BOOL:
      names.insert(names.end(), {"true", "false"});
      break;
    case LY_TYPE_UNION:
      for (const lysc_type *member : members(type)) {
        add_names(member, names);
      }
      break;
    default:
      break;
  }
}

// "'x' is not one of its values, which are 'a', 'b'"; of many values only the nearest is named.
std::string not_one_of(std::string_view text, const std::vector<std::string> &names) {
  constexpr size_t most = 24;
  std::string why = quoted(text) + " is not one of its values";
  if (names.size() > most) {
    const std::string_view near = closest({names.begin(), names.end()}, text);
    return near.empty() ? why : why + "; did you mean " + quoted(near) + "?";
  }
  for (size_t i = 0; i < names.size(); ++i) {
    why += (i == 0 ? ", which are " : ", ") + yfw::quoted(names[i]);
  }
  return why;
}

// The parts of a range or length, "1..5 or 10", with `least` and `most` for a type without one.
std::string range_words(const lysc_range *range, LY_DATA_TYPE base, const std::string &least, const std::string &most) {
  if (range == nullptr) {
    return least + ".." + most;
  }
  std::string words;
  LY_ARRAY_COUNT_TYPE i = 0;
  LY_ARRAY_FOR(range->parts, i) {
    const auto &part = range->parts[i];
    const bool is_signed = base >= LY_TYPE_DEC64;
    const std::string low = is_signed ? std::to_string(part.min_64) : std::to_string(part.min_u64);
    const std::string high = is_signed ? std::to_string(part.max_64) : std::to_string(part.max_u64);
    words += (i == 0 ? "" : " or ") + (low == high ? low : low + ".." + high);
  }
  return words;
}

// How many bits a whole number has, and whether a sign; 0 bits for other types.
struct width {
  unsigned bits;
  bool is_signed;
};

width width_of(LY_DATA_TYPE base) {
  switch (base) {
    case LY_TYPE_INT8:
      return {8, true};
    case LY_TYPE_INT16:
      return {16, true};
    case LY_TYPE_INT32:
      return {32, true};
    case LY_TYPE_INT64:
      return {64, true};
    case LY_TYPE_UINT8:
      return {8, false};
    case LY_TYPE_UINT16:
      return {16, false};
    case LY_TYPE_UINT32:
      return {32, false};
    case LY_TYPE_UINT64:
      return {64, false};
    default:
      return {0, false};
  }
}

std::string number_range(const lysc_type *type, width width) {
  const uint64_t all = std::numeric_limits<uint64_t>::max() >> (64 - width.bits);
  const std::string most = std::to_string(width.is_signed ? all >> 1U : all);
  const std::string least = width.is_signed ? "-" + std::to_string((all >> 1U) + 1) : "0";
  return range_words(as<lysc_type_num>(type).range, type->basetype, least, most);
}

// Why libyang refused a value, in the framework's words where they can say more.
std::string reason(const lysc_type *type, std::string_view text, const ly_err_item *fault) {
  const std::string_view message = fault != nullptr && fault->msg != nullptr ? fault->msg : "";
  const width number = width_of(type->basetype);
  if (number.bits != 0) {
    return quoted(text) + " is not a whole number in " + number_range(type, number);
  }
  std::vector<std::string> names;
  add_names(type, names);
  if (!names.empty()) {
    return not_one_of(text, names);
  }
  constexpr std::string_view before_pattern = " does not conform to ";
  const size_t pattern = message.rfind(before_pattern);
  if (type->basetype == LY_TYPE_STRING && pattern != std::string_view::npos) {
    std::string expression = plain_words(message.substr(pattern + before_pattern.size()));
    expression = expression.size() < 2 ? expression : expression.substr(1, expression.size() - 2);
    return quoted(text) + " does not match the pattern '" + expression + "'";
  }
  if (type->basetype == LY_TYPE_STRING && as<lysc_type_str>(type).length != nullptr) {
    const auto *length = as<lysc_type_str>(type).length;
    return quoted(text) + " has not the length that it must have, " + range_words(length, type->basetype, "", "");
  }
  return quoted(text) + " is not a value of its type: " + plain_words(message);
}

checked_value stored(const ly_ctx *context, const lysc_node *leaf, const lysc_type *type, std::string_view text) {
  constexpr uint32_t hints =
      LYD_VALHINT_STRING | LYD_VALHINT_DECNUM | LYD_VALHINT_NUM64 | LYD_VALHINT_BOOLEAN | LYD_VALHINT_EMPTY;
  lyd_value value{};
  ly_err_item *fault = nullptr;
  const LY_ERR code = type->plugin->store(context, type, text.data(), text.size(), 0, LY_VALUE_JSON, nullptr, hints,
                                          leaf, &value, nullptr, &fault);
  checked_value result;
  result.ok = code == LY_SUCCESS || code == LY_EINCOMPLETE;
  if (result.ok) {
    const char *canonical = lyd_value_get_canonical(context, &value);
    result.canonical = canonical != nullptr ? canonical : text;
    type->plugin->free(context, &value);
  } else {
    result.why = reason(type, text, fault);
  }
  ly_err_free(fault);
  return result;
}

checked_value identity_value(const lysc_type *type, std::string_view text, const prefix_resolver &prefixes) {
  const size_t colon = text.find(':');
  const std::string_view prefix = colon == std::string_view::npos ? "" : text.substr(0, colon);
  const std::string_view name = colon == std::string_view::npos ? text : text.substr(colon + 1);
  std::optional<std::string_view> ns;
  if (!prefix.empty() && prefixes) {
    ns = prefixes(prefix);
    if (!ns) {
      return {false, "", "the prefix of " + quoted(text) + " is not declared"};
    }
  }
  for (const lysc_ident *identity : identities(type)) {
    const bool is_here = prefix.empty() || (ns ? *ns == identity->module->ns : prefix == identity->module->name);
    if (is_here && name == identity->name) {
      return {true, identity->name, ""};
    }
  }
  std::vector<std::string> names;
  add_names(type, names);
  return {false, "", not_one_of(text, names)};
}

checked_value checked(const ly_ctx *context, const lysc_node *leaf, const lysc_type *type, std::string_view text,
                      const prefix_resolver &prefixes) {
  if (type->basetype == LY_TYPE_IDENT) {
    return identity_value(type, text, prefixes);
  }
  if (type->basetype != LY_TYPE_UNION) {
    return stored(context, leaf, type, text);
  }
  std::string reasons;
  for (const lysc_type *member : members(type)) {
    checked_value result = checked(context, leaf, member, text, prefixes);
    if (result.ok) {
      return result;
    }
    reasons += (reasons.empty() ? "" : ", and ") + result.why;
  }
  std::vector<std::string> names;
  add_names(type, names);
  return {false, "", reasons.empty() ? not_one_of(text, names) : reasons};
}

}  // namespace

std::vector<std::string> schema::allowed_values(const lysc_node *leaf) const {
  std::vector<std::string> names;
  if (const lysc_type *type = type_of(leaf)) {
    add_names(type, names);
  }
  return names;
}

checked_value schema::check_value(const lysc_node *leaf, std::string_view text, const prefix_resolver &prefixes) const {
  const lysc_type *type = type_of(leaf);
  if (type == nullptr) {
    return {false, "", "it is not a leaf and takes no value"};
  }
  return checked(parts_->context.get(), leaf, type, text, prefixes);
}

static json_kind kind_of(const ly_ctx *context, const lysc_node *leaf, const lysc_type *type, std::string_view value) {
  switch (type->basetype) {
    case LY_TYPE_BOOL:
      return json_kind::boolean;
    case LY_TYPE_EMPTY:
      return json_kind::empty;
    case LY_TYPE_UNION:
      for (const lysc_type *member : members(type)) {
        if (checked(context, leaf, member, value, {}).ok) {
          return kind_of(context, leaf, member, value);
        }
      }
      return json_kind::string;
    default:
      const unsigned bits = width_of(type->basetype).bits;
      return bits != 0 && bits < 64 ? json_kind::number : json_kind::string;
  }
}

json_kind schema::json_type(const lysc_node *leaf, std::string_view value) const {
  const lysc_type *type = type_of(leaf);
  return type == nullptr ? json_kind::string : kind_of(parts_->context.get(), leaf, type, value);
}

static std::string_view identity_module_of(const lysc_type *type, std::string_view value) {
  if (type->basetype == LY_TYPE_IDENT) {
    const auto all = identities(type);
    const auto found = std::ranges::find_if(all, [&](const auto *each) { return value == each->name; });
    return found == all.end() ? "" : (*found)->module->name;
  }
  if (type->basetype == LY_TYPE_UNION) {
    for (const lysc_type *member : members(type)) {
      if (const std::string_view module = identity_module_of(member, value); !module.empty()) {
        return module;
      }
    }
  }
  return "";
}

std::string_view schema::identity_module(const lysc_node *leaf, std::string_view value) const {
  const lysc_type *type = type_of(leaf);
  return type == nullptr ? "" : identity_module_of(type, value);
}

}  // namespace yfw
