#include "terminal.hpp"

#include <unistd.h>

#include <cstdlib>
#include <iostream>

namespace ymap {
namespace {

constexpr std::chrono::milliseconds before_the_first{1000};
constexpr std::chrono::milliseconds between_lines{100};
constexpr const char *erased_line = "\r\x1b[K";

const char *code(colour in) {
  switch (in) {
    case colour::red:
      return "\x1b[31m";
    case colour::green:
      return "\x1b[32m";
    case colour::yellow:
      return "\x1b[33m";
    case colour::magenta:
      return "\x1b[35m";
    case colour::cyan:
      return "\x1b[36m";
    case colour::bold:
      return "\x1b[1m";
    case colour::dim:
      return "\x1b[2m";
    case colour::none:
      break;
  }
  return "";
}

}  // namespace

bool is_terminal(stream to) {
  return isatty(to == stream::out ? STDOUT_FILENO : STDERR_FILENO) != 0;
}

bool use_colour(stream to) {
  const char *no_colour = std::getenv("NO_COLOR");
  const char *kind = std::getenv("TERM");
  const bool is_disabled = no_colour != nullptr && *no_colour != '\0';
  const bool is_dumb = kind != nullptr && std::string_view(kind) == "dumb";
  return is_terminal(to) && !is_disabled && !is_dumb;
}

std::string painted(stream to, colour in, std::string_view text) {
  return in != colour::none && use_colour(to) ? code(in) + std::string(text) + "\x1b[0m" : std::string(text);
}

progress::progress(std::string what)
    : what_(std::move(what)), is_wanted_(is_terminal(stream::err)), next_(clock::now() + before_the_first) {}

progress::~progress() {
  hide();
}

void progress::hide() {
  if (is_shown_) {
    std::cerr << erased_line << std::flush;
    is_shown_ = false;
  }
}

void progress::operator()(size_t done, size_t total) {
  if (!is_wanted_ || clock::now() < next_) {
    return;
  }
  next_ = clock::now() + between_lines;
  is_shown_ = true;
  std::cerr << erased_line << what_ << ": " << done;
  if (total != 0) {
    std::cerr << " of " << total;
  }
  std::cerr << std::flush;
}

}  // namespace ymap
