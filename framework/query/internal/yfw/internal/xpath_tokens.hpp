// The tokens of an XPath 1.0 expression.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace yfw {

enum class xpath_kind {
  slash,
  slashes,  // "//"
  name,     // a name test; `prefix` where one is given
  star,     // any name
  dot,
  dots,  // ".."
  open_bracket,
  close_bracket,
  open,  // a parenthesis
  close,
  function,  // the name before a parenthesis
  literal,   // without its quotes
  number,
  sign,  // an operator of any form, or a comma
  end,
};

struct xpath_token {
  xpath_kind kind;
  std::string text;
  std::string prefix = {};
};

// The tokens, ended by one of kind `end`. Throws `client_error` for other text, for axes, attributes and variables.
std::vector<xpath_token> xpath_tokens(std::string_view text);

}  // namespace yfw
