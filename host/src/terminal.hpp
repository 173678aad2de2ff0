// Output for people: colours and progress.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace ymap {

enum class stream { out, err };

bool is_terminal(stream to);

// Whether a stream shows colours: it is a terminal, and NO_COLOR is not set (no-color.org).
bool use_colour(stream to);

enum class colour { none, red, green, yellow, magenta, cyan, bold, dim };

// The text, in colour if the stream shows colours.
std::string painted(stream to, colour in, std::string_view text);

// A line on standard error with the progress of long work, rewritten in place. Nothing is shown during the first
// second, or when standard error is not a terminal.
class progress {
 public:
  // `what` is the text of the line: "probing leaves".
  explicit progress(std::string what);
  // Removes the line.
  ~progress();
  progress(const progress &) = delete;
  progress &operator=(const progress &) = delete;

  // Removes the line until the next step, for other output.
  void hide();
  // Reports a step, as a yfw::progress_report; a total of 0 is unknown.
  void operator()(size_t done, size_t total);

 private:
  using clock = std::chrono::steady_clock;

  std::string what_;
  bool is_wanted_;
  bool is_shown_ = false;
  clock::time_point next_;
};

}  // namespace ymap
