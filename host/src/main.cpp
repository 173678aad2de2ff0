#include "command_line.hpp"

int main(int argc, char **argv) {
  return ymap::run_command_line(argc, argv);
}
