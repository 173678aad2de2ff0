#include <fcntl.h>
#include <unistd.h>

#include "command_line.hpp"

namespace {

// Opens closed standard descriptors, so that no file gets their numbers and with them the output. They are opened in
// the wrong direction: using them still fails.
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
