// Whether people read what is printed, and what is printed for them only.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace ymap {

enum class stream { out, err };

bool is_terminal(stream to);

// Colour is for terminals, unless NO_COLOR says otherwise (no-color.org).
bool use_colour(stream to);

enum class colour { red, green, yellow, cyan, bold, dim };

// The text in that colour if `stream` shows colours, else as it is.
std::string painted(stream to, colour in, std::string_view text);

// One line on standard error that tells how far long work has come, rewritten in place. Nothing is shown during the
// first second, and nothing at all when standard error is no terminal.
class progress {
 public:
  // `what` is for people: "probing leaves". `total` 0: not known.
  explicit progress(std::string what, size_t total = 0);
  // Removes the line.
  ~progress();
  progress(const progress &) = delete;
  progress &operator=(const progress &) = delete;

  void advance(size_t done);

 private:
  using clock = std::chrono::steady_clock;

  std::string what_;
  size_t total_;
  bool is_wanted_;
  bool is_shown_ = false;
  clock::time_point next_;
};

}  // namespace ymap
