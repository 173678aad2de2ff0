// Absolute paths as they are written, before the modules say what their names mean.
#pragma once

#include <string_view>
#include <utility>
#include <vector>

namespace yfw {

// Removes the first step from the path and returns it without its slash: "book[title='a/b']" of
// "/book[title='a/b']/price".
std::string_view next_step(std::string_view &path);

// One step: "lib:book[title='Emma']". The views are of the path.
struct written_step {
  std::string_view prefix;  // empty when none is written
  std::string_view name;
  std::vector<std::pair<std::string_view, std::string_view>> keys;  // names, each with or without prefix, and values
};

// The steps of /lib:library/book[title='Emma']/price, one at least. Throws `client_error` for a text of another form.
std::vector<written_step> read_steps(std::string_view path);

}  // namespace yfw
