#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "yfw/device.hpp"
#include "yfw/node.hpp"

namespace yfw {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const fs::path &file, const std::string &what) {
  throw client_error({file.string()}, what + ": " + std::strerror(errno), error_tag::operation_failed);
}

// The file that `name` leads to.
fs::path target_of(const fs::path &name) {
  std::error_code code;
  fs::path target = fs::canonical(name, code);
  if (code == std::errc::no_such_file_or_directory) {
    throw client_error({name.string()},
                       "there is no such device file; one without data is made by: echo '<data xmlns=\"" +
                           std::string(netconf_ns) + "\"/>' > " + name.string(),
                       error_tag::operation_failed);
  }
  const bool is_regular = !code && fs::is_regular_file(target, code);
  if (code) {
    throw client_error({name.string()}, "cannot be found: " + code.message(), error_tag::operation_failed);
  }
  if (!is_regular) {
    throw client_error({name.string()}, "is not a regular file", error_tag::operation_failed);
  }
  return target;
}

// An open file; a negative number is none.
class descriptor {
 public:
  explicit descriptor(int file) : file_(file) {}
  ~descriptor() {
    if (file_ >= 0) {
      ::close(file_);
    }
  }
  descriptor(const descriptor &) = delete;
  descriptor &operator=(const descriptor &) = delete;

  operator int() const {
    return file_;
  }

 private:
  int file_;
};

std::string contents(const fs::path &name, const fs::path &target) {
  const descriptor file(::open(target.c_str(), O_RDONLY | O_CLOEXEC));
  if (file < 0) {
    fail(name, "cannot be opened");
  }
  std::string text;
  std::array<char, 65536> block;
  ssize_t count = 1;
  while (count != 0) {
    count = ::read(file, block.data(), block.size());
    if (count < 0 && errno != EINTR) {
      fail(name, "cannot be read");
    }
    text.append(block.data(), count < 0 ? 0 : static_cast<size_t>(count));
  }
  return text;
}

void write_all(int file, std::string_view text, const fs::path &name) {
  while (!text.empty()) {
    const ssize_t count = ::write(file, text.data(), text.size());
    if (count < 0 && errno != EINTR) {
      fail(name, "cannot be written");
    }
    text.remove_prefix(count < 0 ? 0 : static_cast<size_t>(count));
  }
}

// Whose the file is and who may use it. Only root can give a file away; for others the writer becomes its owner.
void keep_permissions(int file, const struct stat &before, const fs::path &name) {
  if (::fchown(file, before.st_uid, before.st_gid) != 0 && errno != EPERM) {
    fail(name, "cannot be given its owner");
  }
  if (::fchmod(file, before.st_mode & 07777U) != 0) {
    fail(name, "cannot be given its permissions");
  }
}

// A file beside the target that takes its place, or goes. Its name is always the same, so that what a writer left that
// was killed goes too; the lock keeps it from being another writer's that lives.
class replacement {
 public:
  explicit replacement(const fs::path &target) : target_(target), path_(target.string() + ".ymap-new"), file_(made()) {}
  ~replacement() {
    if (!is_placed_) {
      ::unlink(path_.c_str());
    }
  }
  replacement(const replacement &) = delete;
  replacement &operator=(const replacement &) = delete;

  void fill(const std::string &text) {
    struct stat before {};
    if (::stat(target_.c_str(), &before) != 0) {
      fail(target_, "cannot be looked at");
    }
    write_all(file_, text, path_);
    keep_permissions(file_, before, path_);
    if (::fsync(file_) != 0) {
      fail(path_, "cannot be brought to disk");
    }
  }

  void place() {
    const descriptor directory(::open(target_.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory < 0) {
      fail(target_, "cannot be replaced, since its directory cannot be opened");
    }
    if (std::rename(path_.c_str(), target_.c_str()) != 0) {
      fail(target_, "cannot be replaced");
    }
    is_placed_ = true;
    if (::fsync(directory) != 0) {
      fail(target_, "is replaced, but its directory cannot be brought to disk");
    }
  }

 private:
  int made() const {
    if (::unlink(path_.c_str()) != 0 && errno != ENOENT) {
      fail(path_, "was left by a writer that was stopped, and cannot be removed");
    }
    const int file = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file < 0) {
      fail(path_, "cannot be made");
    }
    return file;
  }

  const fs::path &target_;
  const std::string path_;
  const descriptor file_;
  bool is_placed_ = false;
};

}  // namespace

// Open for the lock alone, by which nothing is written. Who made the file may let others only read it, and that does;
// a file system over a network, though, may want it open for writing.
static int opened_lock(const fs::path &file) {
  const int lock = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  return lock < 0 && errno == EACCES ? ::open(file.c_str(), O_RDONLY | O_CLOEXEC) : lock;
}

file_lock::file_lock(const fs::path &file) : file_(opened_lock(file)) {
  if (file_ < 0) {
    fail(file, "cannot be opened, so that the device cannot be locked");
  }
  while (::flock(file_, LOCK_EX) != 0) {
    if (const int why = errno; why != EINTR) {
      ::close(file_);
      errno = why;
      fail(file, "cannot be locked");
    }
  }
}

file_lock::~file_lock() {
  ::close(file_);
}

device_file::device_file(const fs::path &file, const schema &modules, use intent)
    : name_(file), target_(target_of(file)) {
  if (intent == use::edit) {
    lock_.emplace(target_.string() + ".lock");
  }
  content_.emplace(device::read(document::read(contents(name_, target_), name_.string(), modules)));
}

void device_file::save() {
  replacement made(target_);
  made.fill(content_->text());
  made.place();
}

}  // namespace yfw
