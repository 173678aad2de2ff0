// Writers of one device file, killed at random moments: two processes of `ymap set` at a time, each counting up its own
// leaf. The file is whole at any time, an acknowledged edit is never lost, and a killed writer's lock stops nobody.
// YMAP_KILLS=10000 in the environment asks for that many kills instead of 200.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <random>
#include <thread>

#include "yfw/memory_device.hpp"
#include "yfw/query.hpp"

namespace {

namespace fs = std::filesystem;
using std::chrono::microseconds;
using clock_type = std::chrono::steady_clock;

constexpr const char *ymap = YMAP_BIN_DIR "/ymap";

const yfw::schema &modules() {
  static const yfw::schema schema = yfw::schema::load({YMAP_SOURCE_DIR "/yang"});
  return schema;
}

std::string address(int count) {
  char text[32];
  (void)std::snprintf(text, sizeof text, "02:00:00:%02x:%02x:%02x", count >> 16 & 0xff, count >> 8 & 0xff,
                      count & 0xff);
  return text;
}

int count_of(std::string_view address) {
  std::string digits(address.substr(9));
  std::erase(digits, ':');
  return static_cast<int>(std::stoul(digits, nullptr, 16));
}

pid_t started(const fs::path &file, const std::string &path, const std::string &value) {
  const std::string device = file;
  const char *arguments[] = {ymap, "set", "--device", device.c_str(), path.c_str(), value.c_str(), nullptr};
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process = -1;
  const int fault = ::posix_spawn(&process, ymap, &actions, nullptr, const_cast<char **>(arguments), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  return fault == 0 ? process : -1;
}

// The wait status, or -1 when the process had to be stopped after 30 seconds.
int ended(pid_t process) {
  int status = 0;
  for (const auto limit = clock_type::now() + std::chrono::seconds(30); clock_type::now() < limit;) {
    if (::waitpid(process, &status, WNOHANG) == process) {
      return status;
    }
    std::this_thread::sleep_for(microseconds(500));
  }
  ::kill(process, SIGKILL);
  ::waitpid(process, nullptr, 0);
  return -1;
}

struct tally {
  std::atomic<int> killed = 0, acknowledged = 0, killed_after_effect = 0, killed_while_writing = 0;
};

// One of the two who write. Each owns a leaf, and knows the last value that was acknowledged.
class writer {
 public:
  writer(const fs::path &file, const std::string &interface, unsigned seed)
      : file_(file), interface_(interface), random_(seed) {}

  bool set_unhindered() {
    const bool is_done = ended(started(file_, leaf(), address(++count_))) == 0;
    acknowledged_ = is_done ? count_ : acknowledged_;
    return is_done;
  }

  // Starts an edit, kills it at some moment, and looks at what stands in the file.
  void attempt(microseconds usual, tally *all) {
    const pid_t process = started(file_, leaf(), address(++count_));
    ASSERT_GT(process, 0);
    await_moment(usual);
    ::kill(process, SIGKILL);
    const int status = ended(process);
    ASSERT_TRUE(status == 0 || (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)) << status;
    const int found = in_file();
    if (status == 0) {
      ASSERT_EQ(count_, found) << "an acknowledged edit of " << interface_ << " is lost";
      ++all->acknowledged;
    } else {
      ASSERT_TRUE(found == acknowledged_ || found == count_) << found << " of " << interface_;
      ++all->killed;
      all->killed_after_effect += found == count_ ? 1 : 0;
    }
    acknowledged_ = found;
  }

  int acknowledged() const {
    return acknowledged_;
  }

  // The value in the file, which must be whole.
  int in_file() const {
    static std::mutex one_at_a_time;
    const std::lock_guard alone(one_at_a_time);
    std::ifstream in(file_, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    const yfw::memory_device device(yfw::document::read(text, file_.string(), modules()));
    const yfw::native_operation asked{yfw::operation_kind::read,
                                      yfw::read_instance_path("/Zemlo-QUARN-interface-cfg:interface-configurations/"
                                                              "interface-configuration[interface-name='" +
                                                                  interface_ + "']/Zemlo-QUARN-mdrv-lib-cfg:mac-addr",
                                                              modules()),
                                      {},
                                      YFW_OPERATION_MERGE,
                                      nullptr};
    const yfw::data_tree found = device.select({&asked, 1});
    return count_of(*found.first()->first_child->first_child->next->value);
  }

 private:
  std::string leaf() const {
    return "/interfaces/interface[name='" + interface_ + "']/ethernet/config/mac-address";
  }

  // Any moment of an edit, or, every other time, one after a new file was seen to be written.
  void await_moment(microseconds usual) {
    const auto start = clock_type::now();
    std::uniform_int_distribution<int64_t> within(0, usual.count() * 2);
    if ((++attempts_ & 1) != 0) {
      std::this_thread::sleep_for(microseconds(within(random_)));
      return;
    }
    const fs::path written = file_.string() + ".ymap-new";
    while (::access(written.c_str(), F_OK) != 0 && clock_type::now() - start < 2 * usual) {
      std::this_thread::sleep_for(microseconds(50));
    }
    std::this_thread::sleep_for(microseconds(within(random_) / 20));
  }

  fs::path file_;
  std::string interface_;
  std::mt19937 random_;
  int count_ = 0, acknowledged_ = 0, attempts_ = 0;
};

TEST(KilledWriters, LoseNothing) {
  const char *wish = std::getenv("YMAP_KILLS");
  const int wanted = wish != nullptr ? std::atoi(wish) : 200;
  std::string name = testing::TempDir() + "killsXXXXXX";
  ASSERT_NE(nullptr, ::mkdtemp(name.data()));
  const fs::path file = fs::path(name) / "device.xml";
  fs::copy_file(YMAP_SOURCE_DIR "/examples/device.xml", file);

  const unsigned seed = std::random_device{}();
  writer writers[] = {{file, "GigabitEthernet0/0/0/1", seed}, {file, "GigabitEthernet0/0/0/2", seed + 1}};
  const auto start = clock_type::now();
  ASSERT_TRUE(writers[0].set_unhindered());
  ASSERT_TRUE(writers[1].set_unhindered());
  const auto usual = std::chrono::duration_cast<microseconds>((clock_type::now() - start) / 2);
  (void)modules();

  tally all;
  const auto work = [&](writer &own) {
    try {
      while (all.killed < wanted && !testing::Test::HasFailure()) {
        own.attempt(usual, &all);
        all.killed_while_writing += fs::exists(file.string() + ".ymap-new") ? 1 : 0;
      }
    } catch (const std::exception &fault) {
      ADD_FAILURE() << "the file is not whole: " << fault.what();
    }
  };
  std::thread other([&] { work(writers[1]); });
  work(writers[0]);
  other.join();

  for (writer &each : writers) {
    EXPECT_EQ(each.acknowledged(), each.in_file()) << "lost to the other writer";
    EXPECT_TRUE(each.set_unhindered()) << "held up by a lock that was left";
    EXPECT_EQ(each.acknowledged(), each.in_file());
  }
  EXPECT_FALSE(fs::exists(file.string() + ".ymap-new"));
  std::printf(
      "seed %u: %d killed, %d of them after their edit took effect; a new file stood there %d times; %d "
      "acknowledged\n",
      seed, all.killed.load(), all.killed_after_effect.load(), all.killed_while_writing.load(),
      all.acknowledged.load());
  if (!testing::Test::HasFailure()) {
    fs::remove_all(name);
  }
}

}  // namespace
