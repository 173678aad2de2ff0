// The one error type of the framework, thrown where a fault is found and caught once by the program.
#pragma once

#include <optional>
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

// What a NETCONF server says of a fault in one word (RFC 6241, appendix A).
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

// A value that is not taken, and why.
struct rejected_value {
  std::string value;
  std::string reason;                      // without the value: "has no native counterpart"
  std::vector<std::string> accepted = {};  // the values that would be taken instead, as far as known
};

// A fault in what a client asks for, or in carrying it out: an rpc-error in all but form. The place's path is of the
// client's model, where the fault has one.
class client_error : public error {
 public:
  // `bad_element` is the name that the tag is about; empty: the last one of the path.
  client_error(place where, const std::string &text, error_tag tag, std::string bad_element = {});

  // Of a value: `text` says what `rejected` holds in one sentence.
  client_error(place where, const std::string &text, error_tag tag, rejected_value rejected);

  // The same fault at another place.
  client_error at(place where) const;

  error_tag tag() const noexcept {
    return tag_;
  }
  // Empty for tags that name no element.
  const std::string &bad_element() const noexcept {
    return bad_element_;
  }
  // The value that the fault is about; none when it is not about one.
  const std::optional<rejected_value> &rejected() const noexcept {
    return rejected_;
  }

 private:
  error_tag tag_;
  std::string bad_element_;
  std::optional<rejected_value> rejected_;
};

// `text` in single quotes, shortened to about its first 80 bytes and with control characters replaced by '?', fit for a
// message of one line. With a std::string it is called as yfw::quoted, since std::quoted would be found as well.
std::string in_quotes(std::string_view text);

// `text` fit for a message of one line: with control characters replaced by '?', and without the middle of a long one.
std::string one_line(std::string_view text);

}  // namespace yfw
