#include <libyang/plugins_types.h>

#include <algorithm>
#include <iterator>
#include <limits>

#include "yfw/error.hpp"
#include "yfw/internal/schema_internal.hpp"
#include "yfw/internal/schema_types.hpp"
#include "yfw/internal/text.hpp"

namespace yfw {

namespace {

// What would be accepted instead of a value: "'a', 'b' or a whole number in 1..5", or what is wrong with it.
struct expectation {
  std::string expected;
  std::string detail;                      // "length must be 1..5"
  std::vector<std::string> accepted = {};  // the values, where they can be listed
};

// Of many names only the nearest is given.
expectation one_of(std::string_view text, std::vector<std::string> names) {
  constexpr size_t most = 24;
  if (names.size() > most) {
    return {"", did_you_mean({names.begin(), names.end()}, text), std::move(names)};
  }
  std::string expected = quoted_list(names);
  return {std::move(expected), "", std::move(names)};
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
    words += i == 0 ? "" : " or ";
    words += low;
    if (low != high) {
      words.append("..").append(high);
    }
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

// What libyang expects, in the framework's words where they can say more.
expectation expected_by(const lysc_type *type, std::string_view text, const ly_err_item *fault) {
  const std::string_view message = fault != nullptr && fault->msg != nullptr ? fault->msg : "";
  const width number = width_of(type->basetype);
  if (number.bits != 0) {
    return {"a whole number in " + number_range(type, number), ""};
  }
  if (auto names = value_names(type); !names.empty()) {
    return one_of(text, std::move(names));
  }
  constexpr std::string_view before_pattern = " does not conform to ";
  const size_t pattern = message.rfind(before_pattern);
  if (type->basetype == LY_TYPE_STRING && pattern != std::string_view::npos) {
    std::string expression = plain_words(message.substr(pattern + before_pattern.size()));
    expression = expression.size() < 2 ? expression : expression.substr(1, expression.size() - 2);
    return {"a string that matches '" + expression + "'", ""};
  }
  if (type->basetype == LY_TYPE_STRING && as<lysc_type_str>(type).length != nullptr) {
    const auto *length = as<lysc_type_str>(type).length;
    return {"", ": length must be " + range_words(length, type->basetype, "", "")};
  }
  return {"", ": " + plain_words(message)};
}

checked_value rejected(std::string_view text, expectation wanted) {
  std::string reason = (wanted.expected.empty() ? "" : ", expected " + wanted.expected) + wanted.detail;
  return {false, {}, {rejected_value::kind::invalid, std::string(text), std::move(reason), std::move(wanted.accepted)}};
}

checked_value stored(const ly_ctx *context, const lysc_node *leaf, const lysc_type *type, std::string_view text) {
  constexpr uint32_t hints =
      LYD_VALHINT_STRING | LYD_VALHINT_DECNUM | LYD_VALHINT_NUM64 | LYD_VALHINT_BOOLEAN | LYD_VALHINT_EMPTY;
  lyd_value value{};
  ly_err_item *fault = nullptr;
  const LY_ERR code = type->plugin->store(context, type, text.data(), text.size(), 0, LY_VALUE_JSON, nullptr, hints,
                                          leaf, &value, nullptr, &fault);
  checked_value result;
  if (code == LY_SUCCESS || code == LY_EINCOMPLETE) {
    const char *canonical = lyd_value_get_canonical(context, &value);
    result = {true, std::string(canonical != nullptr ? canonical : text), {}};
    type->plugin->free(context, &value);
  } else {
    result = rejected(text, expected_by(type, text, fault));
  }
  ly_err_free(fault);
  return result;
}

checked_value identity_value(const identity_table &identities, const lysc_type *type, std::string_view text,
                             const prefix_resolver &prefixes) {
  const size_t colon = text.find(':');
  const std::string_view prefix = colon == std::string_view::npos ? "" : text.substr(0, colon);
  const std::string_view name = colon == std::string_view::npos ? text : text.substr(colon + 1);
  std::optional<std::string_view> ns;
  if (!prefix.empty() && prefixes) {
    ns = prefixes(prefix);
    if (!ns) {
      return rejected(text, {"", ": prefix " + in_quotes(prefix) + " is not declared"});
    }
  }
  for (const lysc_ident *identity : identities.at(type)) {
    const bool is_here = prefix.empty() || (ns ? *ns == identity->module->ns : prefix == identity->module->name);
    if (is_here && name == identity->name) {
      return {true, identity->name, {}};
    }
  }
  return rejected(text, one_of(text, value_names(type)));
}

checked_value checked(const ly_ctx *context, const identity_table &identities, const lysc_node *leaf,
                      const lysc_type *type, std::string_view text, const prefix_resolver &prefixes) {
  if (type->basetype == LY_TYPE_IDENT) {
    return identity_value(identities, type, text, prefixes);
  }
  if (type->basetype != LY_TYPE_UNION) {
    return stored(context, leaf, type, text);
  }
  // The members' expectations one after the other.
  rejected_value none{rejected_value::kind::invalid, std::string(text)};
  for (const lysc_type *member : members(type)) {
    checked_value result = checked(context, identities, leaf, member, text, prefixes);
    if (result.ok) {
      return result;
    }
    const bool is_next = !none.reason.empty() && result.rejected.reason.starts_with(", expected ");
    none.reason += is_next ? " or " + result.rejected.reason.substr(std::string_view(", expected ").size())
                           : result.rejected.reason;
    std::ranges::move(result.rejected.accepted, std::back_inserter(none.accepted));
  }
  return {false, {}, std::move(none)};
}

}  // namespace

std::vector<std::string> schema::allowed_values(const lysc_node *leaf) const {
  const lysc_type *type = type_of(leaf);
  return type == nullptr ? std::vector<std::string>() : value_names(type);
}

checked_value schema::check_value(const lysc_node *leaf, std::string_view text, const prefix_resolver &prefixes) const {
  const lysc_type *type = type_of(leaf);
  if (type == nullptr) {
    return rejected(text, {"", ": the node is not a leaf"});
  }
  return checked(parts_->context.get(), parts_->identities, leaf, type, text, prefixes);
}

static json_kind kind_of(const ly_ctx *context, const identity_table &identities, const lysc_node *leaf,
                         const lysc_type *type, std::string_view value) {
  switch (type->basetype) {
    case LY_TYPE_BOOL:
      return json_kind::boolean;
    case LY_TYPE_EMPTY:
      return json_kind::empty;
    case LY_TYPE_UNION:
      for (const lysc_type *member : members(type)) {
        if (checked(context, identities, leaf, member, value, {}).ok) {
          return kind_of(context, identities, leaf, member, value);
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
  return type == nullptr ? json_kind::string : kind_of(parts_->context.get(), parts_->identities, leaf, type, value);
}

static std::string_view identity_module_of(const identity_table &identities, const lysc_type *type,
                                           std::string_view value) {
  if (type->basetype == LY_TYPE_IDENT) {
    const auto &all = identities.at(type);
    const auto found = std::ranges::find_if(all, [&](const auto *each) { return value == each->name; });
    return found == all.end() ? "" : (*found)->module->name;
  }
  if (type->basetype == LY_TYPE_UNION) {
    for (const lysc_type *member : members(type)) {
      if (const std::string_view module = identity_module_of(identities, member, value); !module.empty()) {
        return module;
      }
    }
  }
  return "";
}

std::string_view schema::identity_module(const lysc_node *leaf, std::string_view value) const {
  const lysc_type *type = type_of(leaf);
  return type == nullptr ? "" : identity_module_of(parts_->identities, type, value);
}

}  // namespace yfw
