#include "yfw/internal/coverage_values.hpp"

#include <algorithm>

#include "yfw/internal/schema_internal.hpp"
#include "yfw/internal/schema_types.hpp"

namespace yfw {
namespace {

// Bounds of the built-in number types and strings of common typedefs, for types without a range or pattern.
constexpr std::string_view common_numbers[] = {"-9223372036854775808",
                                               "-2147483648",
                                               "-32768",
                                               "-128",
                                               "0",
                                               "127",
                                               "255",
                                               "32767",
                                               "65535",
                                               "2147483647",
                                               "4294967295",
                                               "9223372036854775807",
                                               "18446744073709551615"};
constexpr std::string_view common_strings[] = {"a",
                                               "a1",
                                               "",
                                               "0",
                                               "192.0.2.1",
                                               "192.0.2.0/24",
                                               "2001:db8::1",
                                               "2001:db8::/32",
                                               "00:11:22:33:44:55",
                                               "2020-01-01",
                                               "2020-01-01T00:00:00Z",
                                               "1.3.6.1",
                                               "00000000-0000-4000-8000-000000000000",
                                               "example.com",
                                               "YQ=="};

constexpr const char *text_to_escape = R"( a <b> & "c" 'd' \ é )";
constexpr uint64_t longest_text = 4096;  // of a type without a closer bound

bool is_number(LY_DATA_TYPE base) {
  switch (base) {
    case LY_TYPE_UINT8:
    case LY_TYPE_UINT16:
    case LY_TYPE_UINT32:
    case LY_TYPE_UINT64:
    case LY_TYPE_INT8:
    case LY_TYPE_INT16:
    case LY_TYPE_INT32:
    case LY_TYPE_INT64:
    case LY_TYPE_DEC64:
      return true;
    default:
      return false;
  }
}

// A number with `digits` decimals, given in units of the last one.
std::string decimal(int64_t units, unsigned digits) {
  std::string text = std::to_string(units);
  const size_t sign = units < 0 ? 1 : 0;
  if (text.size() - sign <= digits) {
    text.insert(sign, digits + 1 - (text.size() - sign), '0');
  }
  return digits == 0 ? text : text.insert(text.size() - digits, ".");
}

void add_ends(const lysc_type *type, const lysc_range *range, std::vector<std::string> &found) {
  const unsigned digits = type->basetype == LY_TYPE_DEC64 ? as<lysc_type_dec>(type).fraction_digits : 0;
  const auto end = [&](int64_t number, uint64_t natural) {
    return type->basetype < LY_TYPE_DEC64 ? std::to_string(natural) : decimal(number, digits);
  };
  for (const auto *part : array_items(range->parts)) {
    found.push_back(end(part->min_64, part->min_u64));
    found.push_back(end(part->max_64, part->max_u64));
  }
}

class sampler {
 public:
  sampler(const schema &modules, const lysc_node *leaf, bool is_thorough)
      : modules_(modules), leaf_(leaf), is_thorough_(is_thorough) {}

  void add(const lysc_type *type) {
    switch (type->basetype) {
      case LY_TYPE_UNION:
        for (const lysc_type *member : members(type)) {
          add(member);
        }
        break;
      case LY_TYPE_STRING:
        add_text(type);
        break;
      default:
        is_number(type->basetype) ? add_numbers(type) : add_names(type);
    }
  }

  std::vector<std::string> values() {
    return std::move(found_);
  }

 private:
  bool is_valid(const std::string &text) const {
    return modules_.check_value(leaf_, text).ok;
  }

  void add_value(const std::string &text) {
    if (std::find(found_.begin(), found_.end(), text) == found_.end()) {
      found_.push_back(text);
    }
  }

  void add_first_valid(const std::vector<std::string> &candidates) {
    const auto valid =
        std::find_if(candidates.begin(), candidates.end(), [&](const auto &each) { return is_valid(each); });
    if (valid != candidates.end()) {
      add_value(*valid);
    }
  }

  void add_names(const lysc_type *type) {
    const std::vector<std::string> names = value_names(type);
    std::for_each(names.begin(), names.end(), [&](const auto &each) { add_value(each); });
    if (names.empty()) {
      add_first_valid(common_values(type));
    }
  }

  void add_numbers(const lysc_type *type) {
    std::vector<std::string> ends;
    // Decimal types have their range in another place than integers.
    const lysc_range *range =
        type->basetype == LY_TYPE_DEC64 ? as<lysc_type_dec>(type).range : as<lysc_type_num>(type).range;
    if (range != nullptr) {
      add_ends(type, range, ends);
    } else {
      ends.assign(std::begin(common_numbers), std::end(common_numbers));
      std::erase_if(ends, [&](const auto &each) { return !is_valid(each); });
    }
    if (!ends.empty()) {
      add_value(ends.front());
      add_value(ends.back());
    }
  }

  void add_text(const lysc_type *type) {
    const auto &text = as<lysc_type_str>(type);
    std::vector<std::string> candidates = pattern_matches(text, false);
    candidates.insert(candidates.end(), std::begin(common_strings), std::end(common_strings));
    const uint64_t shortest = text.length != nullptr ? text.length->parts[0].min_u64 : 0;
    candidates.emplace_back(std::min(shortest, longest_text), 'a');
    add_first_valid(candidates);
    if (is_thorough_) {
      const uint64_t longest = text.length != nullptr ? array_items(text.length->parts).back()->max_u64 : 0;
      add_first_valid({std::string(std::min(shortest, longest_text), 'a')});
      add_first_valid({std::string(std::min(longest, longest_text), 'a')});
      add_first_valid({text_to_escape});
      std::ranges::stable_sort(candidates, std::ranges::greater(), &std::string::size);
      add_first_valid(candidates);
      add_first_valid(pattern_matches(text, true));
    }
  }

  // Strings that probably match the patterns of the type.
  static std::vector<std::string> pattern_matches(const lysc_type_str &type, bool last_of_class) {
    std::vector<std::string> found;
    for (const auto *pattern : array_items(type.patterns)) {
      if ((*pattern)->inverted == 0) {
        const auto samples = pattern_samples((*pattern)->expr, last_of_class);
        found.insert(found.end(), samples.begin(), samples.end());
      }
    }
    return found;
  }

  // Common strings, zeros in base64, and the path of a node that exists.
  std::vector<std::string> common_values(const lysc_type *type) const {
    std::vector<std::string> found(std::begin(common_strings), std::end(common_strings));
    const lysc_range *length = type->basetype == LY_TYPE_BINARY ? as<lysc_type_bin>(type).length : nullptr;
    if (length != nullptr) {
      const uint64_t bytes = std::min(length->parts[0].min_u64, longest_text);
      constexpr std::string_view rest[] = {"", "AA==", "AAA="};
      found.push_back(std::string(bytes / 3 * 4, 'A').append(rest[bytes % 3]));
    }
    const lysc_node *top = leaf_;
    while (parent(top) != nullptr) {
      top = parent(top);
    }
    found.push_back(qualified_path(top));
    return found;
  }

  const schema &modules_;
  const lysc_node *leaf_;
  const bool is_thorough_;
  std::vector<std::string> found_;
};

std::vector<std::string> samples(const schema &modules, const lysc_node *leaf, bool is_thorough) {
  sampler collected(modules, leaf, is_thorough);
  collected.add(type_of(leaf));
  return collected.values();
}

}  // namespace

std::vector<std::string> sample_values(const schema &modules, const lysc_node *leaf) {
  return samples(modules, leaf, false);
}

std::vector<std::string> thorough_values(const schema &modules, const lysc_node *leaf) {
  return samples(modules, leaf, true);
}

}  // namespace yfw
