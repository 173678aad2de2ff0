// The command line of ymap.
#pragma once

namespace ymap {

// Parses and runs. Returns the exit code: 0 done, 1 input refused or work failed, 2 wrong command line.
int run_command_line(int argc, char **argv);

}  // namespace ymap
