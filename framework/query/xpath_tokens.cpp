#include "yfw/internal/xpath_tokens.hpp"

#include <algorithm>
#include <array>

#include "yfw/error.hpp"
#include "yfw/internal/text.hpp"

namespace yfw {
namespace {

bool is_name_byte(char c) {
  const bool is_letter =
      (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (static_cast<unsigned char>(c) & 0x80U) != 0;
  return is_letter || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.';
}

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

class tokenizer {
 public:
  explicit tokenizer(std::string_view text) : all_(text), left_(text) {}

  std::vector<xpath_token> run() {
    for (skip_blanks(); !left_.empty(); skip_blanks()) {
      next();
    }
    add(xpath_kind::end, 0);
    return std::move(tokens_);
  }

 private:
  void skip_blanks() {
    while (!left_.empty() && is_blank(left_.front())) {
      left_.remove_prefix(1);
    }
  }

  [[noreturn]] void fail(const std::string &text) const {
    throw client_error({}, "unsupported XPath " + in_quotes(all_) + ": " + text, error_tag::invalid_value);
  }

  void add(xpath_kind kind, size_t bytes) {
    tokens_.push_back({kind, std::string(left_.substr(0, bytes))});
    left_.remove_prefix(bytes);
  }

  // After an operand, a name or '*' is an operator (XPath 1.0, section 3.7).
  bool is_after_operand() const {
    if (tokens_.empty()) {
      return false;
    }
    switch (tokens_.back().kind) {
      case xpath_kind::name:
      case xpath_kind::star:
      case xpath_kind::dot:
      case xpath_kind::dots:
      case xpath_kind::close_bracket:
      case xpath_kind::close:
      case xpath_kind::literal:
      case xpath_kind::number:
        return true;
      default:
        return false;
    }
  }

  void next() {
    const char c = left_.front();
    if (c == '"' || c == '\'') {
      add_literal(c);
    } else if (is_digit(c)) {
      add(xpath_kind::number, std::min(left_.find_first_not_of("0123456789."), left_.size()));
    } else if (c != '.' && c != '-' && is_name_byte(c)) {
      add_name();
    } else {
      add_sign();
    }
  }

  void add_literal(char quote) {
    const size_t end = left_.find(quote, 1);
    if (end == std::string_view::npos) {
      fail("a quote is not closed");
    }
    left_.remove_prefix(1);
    add(xpath_kind::literal, end - 1);
    left_.remove_prefix(1);
  }

  std::string_view name_ahead() const {
    size_t length = 0;
    while (length < left_.size() && is_name_byte(left_[length])) {
      ++length;
    }
    return left_.substr(0, length);
  }

  void add_name() {
    if (is_after_operand()) {
      add(xpath_kind::sign, name_ahead().size());
      return;
    }
    std::string prefix;
    std::string_view name = name_ahead();
    if (left_.substr(name.size()).starts_with("::")) {
      fail("axis " + in_quotes(name) + ", expected '/', '//' or '..'");
    }
    if (left_.substr(name.size()).starts_with(':')) {
      prefix = name;
      left_.remove_prefix(name.size() + 1);
      name = name_ahead();
      if (name.empty()) {
        fail("no name follows the prefix " + in_quotes(prefix));
      }
    }
    add(xpath_kind::name, name.size());
    tokens_.back().prefix = prefix;
    skip_blanks();
    if (left_.starts_with('(')) {
      tokens_.back().kind = xpath_kind::function;
    }
  }

  void add_sign() {
    struct known {
      std::string_view text;
      xpath_kind kind;
    };
    static constexpr std::array<known, 19> signs{{{"//", xpath_kind::slashes},
                                                  {"/", xpath_kind::slash},
                                                  {"..", xpath_kind::dots},
                                                  {".", xpath_kind::dot},
                                                  {"[", xpath_kind::open_bracket},
                                                  {"]", xpath_kind::close_bracket},
                                                  {"(", xpath_kind::open},
                                                  {")", xpath_kind::close},
                                                  {"<=", xpath_kind::sign},
                                                  {">=", xpath_kind::sign},
                                                  {"!=", xpath_kind::sign},
                                                  {"<", xpath_kind::sign},
                                                  {">", xpath_kind::sign},
                                                  {"=", xpath_kind::sign},
                                                  {"|", xpath_kind::sign},
                                                  {"+", xpath_kind::sign},
                                                  {"-", xpath_kind::sign},
                                                  {",", xpath_kind::sign},
                                                  {"*", xpath_kind::star}}};
    const auto found = std::ranges::find_if(signs, [&](const known &each) { return left_.starts_with(each.text); });
    if (found == signs.end()) {
      fail("unexpected " + in_quotes(left_.substr(0, 1)));
    }
    const bool is_product = found->kind == xpath_kind::star && is_after_operand();
    add(is_product ? xpath_kind::sign : found->kind, found->text.size());
  }

  std::string_view all_;
  std::string_view left_;
  std::vector<xpath_token> tokens_;
};

}  // namespace

std::vector<xpath_token> xpath_tokens(std::string_view text) {
  return tokenizer(text).run();
}

}  // namespace yfw
