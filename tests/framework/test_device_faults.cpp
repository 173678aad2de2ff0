// An edit of a device's file in which one operation on files, or one allocation, fails: each in turn. This program's
// own functions stand before those of the C library, for the framework's library too.
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <new>
#include <set>

#include "library.hpp"
#include "yfw/file_device.hpp"
#include "yfw/memory_device.hpp"
#include "yfw/query.hpp"

namespace {

namespace fs = std::filesystem;

// ---- the operation that fails

struct faults {
  const char *operation = nullptr;  // null: none is counted
  size_t left = 0;                  // the fault strikes when it comes to 0
  int error = 0;                    // errno, or `half_done`
  bool is_replaced = false;         // the new file had taken its place
  bool has_struck = false;
};
constexpr int half_done = -1;
faults plan;

bool strikes(const char *operation) {
  if (plan.operation == nullptr || std::strcmp(plan.operation, operation) != 0 || --plan.left != 0) {
    return false;
  }
  plan.operation = nullptr;
  plan.has_struck = true;
  errno = plan.error;
  return true;
}

template <typename Function>
Function *real(Function * /*its own*/, const char *name) {
  return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, name));
}

std::atomic<size_t> bytes_in_use = 0;

void *allocated_or_null(size_t bytes) noexcept {
  void *memory = strikes("allocation") ? nullptr : std::malloc(bytes != 0 ? bytes : 1);
  bytes_in_use += memory != nullptr ? ::malloc_usable_size(memory) : 0;
  return memory;
}

void *allocated(size_t bytes) {
  void *memory = allocated_or_null(bytes);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void release(void *memory) {
  bytes_in_use -= memory != nullptr ? ::malloc_usable_size(memory) : 0;
  std::free(memory);
}

}  // namespace

void *operator new(size_t bytes) {
  return allocated(bytes);
}
void *operator new[](size_t bytes) {
  return allocated(bytes);
}
void *operator new(size_t bytes, const std::nothrow_t & /*tag*/) noexcept {
  return allocated_or_null(bytes);
}
void *operator new[](size_t bytes, const std::nothrow_t & /*tag*/) noexcept {
  return allocated_or_null(bytes);
}
void operator delete(void *memory) noexcept {
  release(memory);
}
void operator delete[](void *memory) noexcept {
  release(memory);
}
void operator delete(void *memory, size_t /*bytes*/) noexcept {
  release(memory);
}
void operator delete[](void *memory, size_t /*bytes*/) noexcept {
  release(memory);
}

extern "C" {

int open(const char *path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  static auto *const next = real(&open, "open");
  return strikes("open") ? -1 : next(path, flags, mode);
}

ssize_t read(int file, void *to, size_t count) {
  static auto *const next = real(&read, "read");
  if (strikes("read")) {
    return plan.error == half_done ? next(file, to, count / 1000) : -1;
  }
  return next(file, to, count);
}

ssize_t write(int file, const void *from, size_t count) {
  static auto *const next = real(&write, "write");
  if (strikes("write")) {
    return plan.error == half_done ? next(file, from, count / 2) : -1;
  }
  return next(file, from, count);
}

int fsync(int file) {
  static auto *const next = real(&fsync, "fsync");
  return strikes("fsync") ? -1 : next(file);
}

int rename(const char *from, const char *to) noexcept {
  static auto *const next = real(&rename, "rename");
  const int result = strikes("rename") ? -1 : next(from, to);
  plan.is_replaced = plan.is_replaced || result == 0;
  return result;
}

int close(int file) {
  static auto *const next = real(&close, "close");
  const bool is_struck = strikes("close");
  return next(file) != 0 || is_struck ? -1 : 0;
}

int flock(int file, int operation) noexcept {
  static auto *const next = real(&flock, "flock");
  return strikes("flock") ? -1 : next(file, operation);
}

int fchmod(int file, mode_t mode) noexcept {
  static auto *const next = real(&fchmod, "fchmod");
  return strikes("fchmod") ? -1 : next(file, mode);
}

int fchown(int file, uid_t owner, gid_t group) noexcept {
  static auto *const next = real(&fchown, "fchown");
  return strikes("fchown") ? -1 : next(file, owner, group);
}

int stat(const char *path, struct stat *result) noexcept {
  static auto *const next = real(&stat, "stat");
  return strikes("stat") ? -1 : next(path, result);
}

int unlink(const char *path) noexcept {
  static auto *const next = real(&unlink, "unlink");
  return strikes("unlink") ? -1 : next(path);
}

char *realpath(const char *path, char *resolved) noexcept {
  static auto *const next = real(&realpath, "realpath");
  return strikes("realpath") ? nullptr : next(path, resolved);
}

}  // extern "C"

namespace {

// ---- an edit under such a fault

const std::string before =
    "<library "
    "xmlns=\"urn:test:library\"><name>Main</name><book><title>Emma</title><edition>1</edition></book></library>";
const std::string after =
    "<library "
    "xmlns=\"urn:test:library\"><name>Annex</name><book><title>Emma</title><edition>1</edition></book></library>";

std::string without_layout(const fs::path &file) {
  std::ifstream in(file);
  std::string text;
  for (std::string line; std::getline(in, line);) {
    text += line.substr(std::min(line.find_first_not_of(' '), line.size()));
  }
  return text;
}

class DeviceFaults : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = testing::TempDir() + "deviceXXXXXX";
    ASSERT_NE(nullptr, ::mkdtemp(name.data()));
    directory_ = name;
    file_ = directory_ / "device.xml";
    ASSERT_EQ("", edit());  // loads what is loaded once
  }
  void TearDown() override {
    fs::remove_all(directory_);
  }

  // What the edit throws, "" when nothing, while the `number`-th such operation fails.
  std::string edit(const char *operation = nullptr, size_t number = 0, int error = 0) const {
    std::ofstream(file_) << before;
    plan = {operation, number, error};
    try {
      yfw::file_device device(file_, library());
      const auto change = device.begin(yfw::datastore::running, yfw::transaction_use::commit);
      const yfw::native_operation set{yfw::operation_kind::set, steps_, "Annex", YFW_OPERATION_MERGE, nullptr};
      change->apply({&set, 1});
      change->commit();
    } catch (const std::exception &fault) {
      plan.operation = nullptr;
      return fault.what();
    }
    plan.operation = nullptr;
    return "";
  }

  std::set<std::string> files() const {
    std::set<std::string> names;
    for (const auto &entry : fs::directory_iterator(directory_)) {
      names.insert(entry.path().filename());
    }
    return names;
  }

  static size_t open_files() {
    return static_cast<size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()));
  }

  bool is_lock_free() const {
    const int lock = ::open((file_.string() + ".lock").c_str(), O_RDWR | O_CLOEXEC);
    const bool is_free = lock >= 0 && ::flock(lock, LOCK_EX | LOCK_NB) == 0;
    ::close(lock);
    return is_free;
  }

  void expect_nothing_left(size_t open_before) const {
    EXPECT_EQ((std::set<std::string>{"device.xml", "device.xml.lock"}), files());
    EXPECT_TRUE(is_lock_free());
    EXPECT_EQ(open_before, open_files());
  }

  fs::path directory_, file_;
  const std::vector<yfw::path_step> steps_ = yfw::read_instance_path("/library:library/name", library());
};

// ---- operations on files

struct OperationRow {
  const char *operation;
  int error;
  bool is_harmless;  // the edit succeeds all the same
  size_t times = 1;  // it is called, at least
};

class DeviceFileFaults : public DeviceFaults, public testing::WithParamInterface<OperationRow> {};

// Afterwards the file is whole, the error names file and reason, and an edit succeeds.
TEST_P(DeviceFileFaults, LeaveAWholeFileAndAClearError) {
  const OperationRow &row = GetParam();
  const size_t open_before = open_files();
  size_t number = 0;
  while (true) {
    const std::string thrown = edit(row.operation, ++number, row.error);
    if (!plan.has_struck) {
      break;
    }
    SCOPED_TRACE(std::string(row.operation) + " " + std::to_string(number) + ": " + thrown);
    EXPECT_EQ(row.is_harmless, thrown.empty());
    EXPECT_EQ(row.is_harmless || plan.is_replaced ? after : before, without_layout(file_));
    if (!row.is_harmless) {
      EXPECT_EQ(0U, thrown.find(file_.string())) << "it names the file";
      EXPECT_NE(std::string::npos, thrown.find(std::strerror(row.error))) << "it gives the reason";
      EXPECT_EQ(plan.is_replaced, thrown.find("is replaced, but") != std::string::npos);
    }
    expect_nothing_left(open_before);
    EXPECT_EQ("", edit());
  }
  EXPECT_GE(number - 1, row.times);
}

INSTANTIATE_TEST_SUITE_P(Operations, DeviceFileFaults,
                         testing::Values(OperationRow{"realpath", EACCES, false}, OperationRow{"stat", EACCES, false},
                                         OperationRow{"open", EMFILE, false, 4}, OperationRow{"flock", ENOLCK, false},
                                         OperationRow{"flock", EINTR, true}, OperationRow{"read", EIO, false},
                                         OperationRow{"read", EINTR, true}, OperationRow{"read", half_done, true},
                                         OperationRow{"write", ENOSPC, false}, OperationRow{"write", EINTR, true},
                                         OperationRow{"write", half_done, true}, OperationRow{"fchown", EIO, false},
                                         OperationRow{"fchown", EPERM, true}, OperationRow{"fchmod", EPERM, false},
                                         OperationRow{"fsync", EIO, false, 2}, OperationRow{"rename", EROFS, false},
                                         OperationRow{"unlink", EACCES, false}, OperationRow{"unlink", ENOENT, true},
                                         OperationRow{"close", EIO, true, 4}),
                         [](const auto &row) {
                           return std::string(row.param.operation) + "_" + std::to_string(row.index);
                         });

// ---- allocations

// Those of C++, each in turn, until an edit needs none that fails.
TEST_F(DeviceFaults, OfAllocationsLeaveAWholeFile) {
  const size_t open_before = open_files();
  size_t number = 0;
  while (true) {
    const std::string thrown = edit("allocation", ++number, ENOMEM);
    if (!plan.has_struck) {
      break;
    }
    // What is not needed any more may also just stay: then the edit succeeds.
    const bool is_done = plan.is_replaced || thrown.empty();
    ASSERT_EQ(is_done ? after : before, without_layout(file_)) << number << ": " << thrown;
    expect_nothing_left(open_before);
  }
  EXPECT_GT(number, 20U);
  EXPECT_EQ("", edit());
}

// Neither edits that are dropped nor those that are committed let a device grow.
TEST_F(DeviceFaults, OfMemoryDoNotAddUp) {
  yfw::memory_device device(yfw::document::read(before, "device", library()));
  const auto motto = yfw::read_instance_path("/library:library/motto", library());
  const auto book = yfw::read_instance_path("/library:library/book[title='A'][edition='1']", library());
  const auto reader = yfw::read_instance_path("/library:library/book[title='A'][edition='1']/loan/reader", library());
  const auto edit = [&](const std::string &value, bool is_committed) {
    const yfw::native_operation operations[] = {
        {yfw::operation_kind::set, motto, value, YFW_OPERATION_MERGE, nullptr},
        {yfw::operation_kind::set, reader, "Ann", YFW_OPERATION_MERGE, nullptr},
        {yfw::operation_kind::remove, book, std::nullopt, YFW_OPERATION_REMOVE, nullptr}};
    const auto change = device.begin(yfw::datastore::running, yfw::transaction_use::commit);
    change->apply(operations);
    if (is_committed) {
      change->commit();
    }
  };
  for (const bool is_committed : {true, false}) {
    edit("Read", true);
    const size_t bytes_before = bytes_in_use;
    for (int i = 0; i < 2000; ++i) {
      edit(std::string(10000, 'x'), is_committed);
    }
    EXPECT_GT(bytes_before + 500000, bytes_in_use) << (is_committed ? "committed" : "dropped");
  }
}

// What a writer left that was killed is neither kept nor in the way.
TEST_F(DeviceFaults, OfAKilledWriterAreClearedByTheNext) {
  std::ofstream(file_.string() + ".ymap-new") << "<libr";
  EXPECT_EQ("", edit());
  EXPECT_EQ(after, without_layout(file_));
  expect_nothing_left(open_files());
}

}  // namespace
