// The one error type of the framework, thrown where a fault is found and caught once by the program.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace yfw {

// Where a fault is, as far as known: empty texts and line 0 mean unknown.
struct place {
  std::string file = {};
  unsigned line = 0;
  std::string path = {};  // of the data node: /library/book[title="Emma"]/price
};

class error : public std::runtime_error {
 public:
  explicit error(const std::string &text);
  error(place where, const std::string &text);

  // what() is "file:line: path: text" with the parts that are known, without a program name.
  const place &where() const noexcept {
    return where_;
  }
  const std::string &text() const noexcept {
    return text_;
  }

 private:
  place where_;
  std::string text_;
};

// `text` in single quotes, shortened to its first 80 bytes and with control characters replaced by '?', fit for a
// message of one line. With a std::string it is called as yfw::quoted, since std::quoted would be found as well.
std::string quoted(std::string_view text);

}  // namespace yfw
