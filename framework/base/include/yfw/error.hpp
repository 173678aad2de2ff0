// The one error type of the framework, thrown where a fault is found and caught once by the program.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace yfw {

// Where a fault is, as far as known: empty texts and line 0 mean unknown.
struct place {
  std::string file = {};
  unsigned line = 0;
  std::string path = {};  // of the data node: /library/book[title="Emma"]/price

  bool operator==(const place &) const = default;
};

// "file:line: path: text" with the parts that are known, without a program name, path and text each as `one_line` has
// them. Without a file the line is "line 3:".
std::string message_line(const place &where, std::string_view text);

class error : public std::runtime_error {
 public:
  explicit error(const std::string &text);
  error(place where, const std::string &text);

  // what() is the `message_line` of these two.
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

// The error-tag of RFC 6241, appendix A.
enum class error_tag {
  bad_element,
  data_exists,
  data_missing,
  invalid_value,
  malformed_message,
  missing_element,
  operation_failed,
  operation_not_supported,
  unknown_element,
  unknown_namespace,
};

// "data-exists"
std::string_view to_string(error_tag tag);

// A value that is not accepted, and why: "invalid value 'x', expected 'a', 'b'".
struct rejected_value {
  enum class kind {
    invalid,   // not of its type
    unmapped,  // without native counterpart
  };

  kind fault;
  std::string value;                       // "x"
  std::string reason = {};                 // ", expected 'a', 'b'", or ": length must be 1..5"
  std::vector<std::string> accepted = {};  // "a", "b", where the accepted values can be listed

  // Without the value: "invalid value, expected 'a', 'b'".
  std::string without_value() const;
};

std::string to_string(const rejected_value &rejected);

// An error in a client's request or in carrying it out, with the fields of an rpc-error. The place's path is of the
// client model, where there is one.
class client_error : public error {
 public:
  // `bad_element` is the name of the element of those tags that name one; empty: the last one of the path.
  client_error(place where, const std::string &text, error_tag tag, std::string bad_element = {});

  // With the text of `rejected` and tag invalid-value.
  client_error(place where, rejected_value rejected);

  // The same fault at another place.
  client_error at(place where) const;

  error_tag tag() const noexcept {
    return tag_;
  }
  // Empty for tags that name no element.
  const std::string &bad_element() const noexcept {
    return bad_element_;
  }
  // The rejected value, owned by the error; null when the error is not of a value.
  const rejected_value *rejected() const noexcept {
    return rejected_.get();
  }

 private:
  error_tag tag_;
  std::string bad_element_;
  std::shared_ptr<const rejected_value> rejected_;  // a value may be large, and errors are copied
};

// `text` in single quotes, shortened to about its first 80 bytes and with control characters replaced by '?', fit for a
// message of one line.
std::string in_quotes(std::string_view text);

// All of them in single quotes, with commas between: "'a', 'b'".
template <typename texts_t>
std::string quoted_list(const texts_t &texts) {
  std::string list;
  for (const auto &text : texts) {
    list += (list.empty() ? "" : ", ") + in_quotes(text);
  }
  return list;
}

// `text` fit for a message of one line: with control characters replaced by '?', and without the middle of a long one.
std::string one_line(std::string_view text);

}  // namespace yfw
