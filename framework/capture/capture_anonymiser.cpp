#include "capture_anonymiser.hpp"

#include <arpa/inet.h>
#include <libyang/libyang.h>

#include <algorithm>
#include <array>
#include <cctype>

#include "capture_text.hpp"
#include "yfw/node.hpp"
#include "yfw/schema.hpp"

namespace yfw {
namespace {

bool is_upper(char c) {
  return c >= 'A' && c <= 'Z';
}
bool is_digit(char c) {
  return c >= '0' && c <= '9';
}
bool is_alphanumeric(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0;
}

// The characters of addresses.
bool is_address_character(char c) {
  return std::isxdigit(static_cast<unsigned char>(c)) != 0 || c == ':' || c == '.' || c == '-';
}

bool is_mac(std::string_view word) {
  static constexpr std::array<std::string_view, 3> forms = {"xx:xx:xx:xx:xx:xx", "xx-xx-xx-xx-xx-xx", "xxxx.xxxx.xxxx"};
  return std::ranges::any_of(forms, [&](std::string_view form) {
    return std::ranges::equal(word, form, [](char c, char wanted) {
      return wanted == 'x' ? std::isxdigit(static_cast<unsigned char>(c)) != 0 : c == wanted;
    });
  });
}

bool is_ip(int family, std::string_view word) {
  std::array<unsigned char, 16> bytes{};
  return inet_pton(family, std::string(word).c_str(), bytes.data()) == 1;
}

std::string hex_group(size_t number) {
  return capture_hex(static_cast<uint32_t>(number & 0xffffU)).substr(2);
}

// Whether the modules name the values of the leaf.
bool is_of_the_model(const lysc_node *leaf) {
  const LY_DATA_TYPE type = reinterpret_cast<const lysc_node_leaf *>(leaf)->type->basetype;
  return type == LY_TYPE_ENUM || type == LY_TYPE_IDENT || type == LY_TYPE_BOOL;
}

// `text` with 'x', 'X' and '0' for its letters and digits, and `number` written into the last of them: into digits
// first, then into letters, and what does not fit behind them.
std::string reshaped(std::string_view text, unsigned number) {
  std::string result;
  for (const char c : text) {
    result += is_digit(c) ? '0' : !is_alphanumeric(c) ? c : is_upper(c) ? 'X' : 'x';
  }
  for (auto each = result.rbegin(); each != result.rend() && number != 0; ++each) {
    if (*each == '0') {
      *each = static_cast<char>('0' + number % 10);
      number /= 10;
    }
  }
  for (auto each = result.rbegin(); each != result.rend() && number != 0; ++each) {
    if (*each == 'x' || *each == 'X') {
      *each = static_cast<char>((*each == 'x' ? 'a' : 'A') + number % 23);  // never 'x' itself
      number /= 23;
    }
  }
  return number == 0 ? result : result + std::to_string(number);
}

}  // namespace

void anonymiser::learn_keys(const yfw_node_t &tree) {
  if (tree.value != nullptr && is_key(extra(tree).schema) && !is_of_the_model(extra(tree).schema)) {
    learn(tree.value);
  }
  for (const yfw_node_t &below : children(tree)) {
    learn_keys(below);
  }
}

void anonymiser::learn(const std::string &key) {
  const bool is_number = std::ranges::all_of(key, is_digit);
  if (is_number || keys_.contains(key) || without_addresses(key) != key) {
    return;
  }
  unsigned number = static_cast<unsigned>(keys_.size());
  std::string candidate;
  do {
    candidate = reshaped(key, ++number);
  } while (candidate == key || replacements_.contains(candidate));
  replacements_.insert(candidate);
  lengths_.insert(key.size());
  keys_.emplace(key, candidate);
}

// Keys are replaced where they are whole words; the longest match counts.
std::string anonymiser::replaced(std::string_view text) {
  std::string result;
  size_t kept_from = 0;
  for (size_t at = 0; at < text.size();) {
    const auto *key = key_at(text, at);
    if (key == nullptr) {
      ++at;
      continue;
    }
    result += without_addresses(text.substr(kept_from, at - kept_from)) + key->second;
    at += key->first.size();
    kept_from = at;
  }
  return result + without_addresses(text.substr(kept_from));
}

const std::pair<const std::string, std::string> *anonymiser::key_at(std::string_view text, size_t at) const {
  if (at > 0 && is_alphanumeric(text[at - 1]) && is_alphanumeric(text[at])) {
    return nullptr;
  }
  for (auto length = lengths_.rbegin(); length != lengths_.rend(); ++length) {
    const size_t end = at + *length;
    const bool is_word_end = end == text.size() || (end < text.size() && !is_alphanumeric(text[end])) ||
                             (end < text.size() && !is_alphanumeric(text[end - 1]));
    const auto found = is_word_end ? keys_.find(text.substr(at, *length)) : keys_.end();
    if (found != keys_.end()) {
      return &*found;
    }
  }
  return nullptr;
}

std::string anonymiser::without_addresses(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const auto begin = std::ranges::find_if(text, is_address_character);
    const auto end = std::find_if_not(begin, text.end(), is_address_character);
    result.append(text.begin(), begin);
    const bool is_part_of_word =
        (begin != text.begin() && is_alphanumeric(*(begin - 1))) || (end != text.end() && is_alphanumeric(*end));
    const std::string_view word(begin, end);
    result += is_part_of_word ? std::string(word) : replaced_address(word);
    text = std::string_view(end, text.end());
  }
  return result;
}

std::string anonymiser::replaced_address(std::string_view word) {
  const size_t end = word.find_last_not_of(".-") + 1;  // marks of the sentence around it
  const std::string_view address = word.substr(0, end);
  const std::string behind(word.substr(end));
  if (is_mac(address)) {
    return new_mac(address) + behind;
  }
  const bool is_v6 = is_ip(AF_INET6, address);
  return (is_v6 || is_ip(AF_INET, address) ? new_ip(address, is_v6) : std::string(address)) + behind;
}

// A locally administered address (IEEE 802), 02:00:00:00:00:01 for the first.
std::string anonymiser::new_mac(std::string_view mac) {
  std::string digits;
  std::ranges::copy_if(mac, std::back_inserter(digits), is_alphanumeric);
  std::ranges::transform(digits, digits.begin(), [](char c) { return is_upper(c) ? static_cast<char>(c + 32) : c; });
  std::string number = std::to_string(macs_.size() + 1);
  number.insert(0, 10 - number.size(), '0');
  const std::string &now = macs_.try_emplace(digits, "02" + number).first->second;
  std::string result(mac);
  size_t next = 0;
  for (char &c : result) {
    c = is_alphanumeric(c) ? now[next++] : c;
  }
  return result;
}

// An address of those that are for documentation (RFC 3849), or of those for benchmarks (RFC 2544), which are more than
// the ones for documentation.
std::string anonymiser::new_ip(std::string_view ip, bool is_v6) {
  const size_t number = ips_.size() + 1;
  const std::string fresh = is_v6 ? "2001:db8::" + hex_group(number >> 16U) + ':' + hex_group(number)
                                  : "198." + std::to_string(18 + (number >> 16U)) + '.' +
                                        std::to_string(number >> 8U & 0xffU) + '.' + std::to_string(number & 0xffU);
  return ips_.try_emplace(std::string(ip), fresh).first->second;
}

}  // namespace yfw
