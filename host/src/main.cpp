#include <fcntl.h>
#include <unistd.h>

#include "command_line.hpp"

namespace {

// A file that is opened while standard input, output or error is closed would get its number, and what is printed would
// go into that file. Opened the wrong way round, a closed one still fails when it is used.
void hold_standard_descriptors() {
  for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number) {
    if (::fcntl(number, F_GETFD) < 0) {
      (void)::open("/dev/null", number == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

}  // namespace

int main(int argc, char **argv) {
  hold_standard_descriptors();
  return ymap::run_command_line(argc, argv);
}
