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

enum class colour { none, red, green, yellow, magenta, cyan, bold, dim };

// The text in that colour if `stream` shows colours, else as it is.
std::string painted(stream to, colour in, std::string_view text);

// One line on standard error that tells how far long work has come, rewritten in place. Nothing is shown during the
// first second, and nothing at all when standard error is no terminal.
class progress {
 public:
  // `what` is for people: "probing leaves".
  explicit progress(std::string what);
  // Removes the line.
  ~progress();
  progress(const progress &) = delete;
  progress &operator=(const progress &) = delete;

  // Removes the line until the next step, since something else is to be written.
  void hide();
  // A step, as yfw::progress_report is told of it; a total of 0 is not known.
  void operator()(size_t done, size_t total);

 private:
  using clock = std::chrono::steady_clock;

  std::string what_;
  bool is_wanted_;
  bool is_shown_ = false;
  clock::time_point next_;
};

}  // namespace ymap
