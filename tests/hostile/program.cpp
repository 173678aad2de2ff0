#include "program.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace hostile {

outcome run_ymap(const std::string &arguments, size_t megabytes, unsigned seconds,
                 const std::function<void(std::FILE *)> &feed) {
  const std::string errors = testing::TempDir() + "ymap-hostile-" + std::to_string(getpid()) + ".err";
  const std::string limit = YMAP_SANITIZED ? "" : "ulimit -v " + std::to_string(megabytes * 1024) + " && ";
  const std::string command = limit + "timeout " + std::to_string(seconds) + " '" YMAP_PROGRAM "' " + arguments +
                              " >/dev/null 2>'" + errors + "'";
  (void)std::signal(SIGPIPE, SIG_IGN);  // it may end before it has read everything
  std::FILE *input = popen(command.c_str(), "w");
  if (input == nullptr) {
    return {127, "cannot be run"};
  }
  if (feed) {
    feed(input);
  }
  const int status = pclose(input);
  std::ifstream stream(errors);
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  (void)std::remove(errors.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), text};
}

}  // namespace hostile
