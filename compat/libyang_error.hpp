// libyang's records of errors, which differ between its major releases.
#pragma once

#include <libyang/libyang.h>

#include <string>

namespace ymap {

// Where libyang found an error: `Schema location "/a:b", line number 3.`, `Line number 3.`, or empty when it does not
// know. libyang 2 has this text in one member; of the parts that libyang 3 has, the text is made here.
template <typename error_item>
std::string libyang_error_location(const error_item &item) {
  if constexpr (requires { item.path; }) {
    return item.path != nullptr ? item.path : "";
  } else {
    std::string text;
    const auto add = [&text](const std::string &part) { text += (text.empty() ? "" : ", ") + part; };
    if (item.schema_path != nullptr) {
      add("schema location \"" + std::string(item.schema_path) + '"');
    }
    if (item.data_path != nullptr) {
      add("data location \"" + std::string(item.data_path) + '"');
    }
    if (item.line != 0) {
      add("line number " + std::to_string(item.line));
    }
    if (!text.empty()) {
      text.front() = static_cast<char>(text.front() - 'a' + 'A');
      text += '.';
    }
    return text;
  }
}

}  // namespace ymap
