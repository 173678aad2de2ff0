// libyang's records of errors, which differ between its major releases.
#pragma once

#include <libyang/libyang.h>

#include <string>

namespace ymap {

// Where libyang found an error: a path, `Line number 3.`, `Schema location "/a:b", line number 3.`, or nothing. libyang
// 2 has this text in one member; of the parts that libyang 3 has, the text is made here.
template <typename error_item>
std::string libyang_error_location(const error_item &item) {
  if constexpr (requires { item.path; }) {
    return item.path != nullptr ? item.path : "";
  } else {
    const char *known = item.schema_path != nullptr ? item.schema_path : item.data_path;
    const std::string path = known != nullptr ? known : "";
    if (item.line == 0) {
      return path;
    }
    const std::string line = "ine number " + std::to_string(item.line) + ".";
    return path.empty() ? "L" + line : "Schema location \"" + path + "\", l" + line;
  }
}

}  // namespace ymap
