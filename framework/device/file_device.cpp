#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "native_store.hpp"
#include "yfw/file_device.hpp"
#include "yfw/namespaces.hpp"

namespace yfw {

// What tells whether a file is still the one that was read. The time is that of the last change of contents or
// attributes, which, other than that of the contents alone, no program can set back.
struct file_identity {
  dev_t device = 0;
  ino_t number = 0;
  off_t size = 0;
  timespec changed = {};

  bool operator==(const file_identity &other) const {
    return device == other.device && number == other.number && size == other.size &&
           changed.tv_sec == other.changed.tv_sec && changed.tv_nsec == other.changed.tv_nsec;
  }
};

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
                       "no such device file; to create one without data: echo '<data xmlns=\"" +
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

file_identity identity_of(int file, const fs::path &name) {
  struct stat found {};
  if (::fstat(file, &found) != 0) {
    fail(name, "cannot be examined");
  }
  return {found.st_dev, found.st_ino, found.st_size, found.st_ctim};
}

std::string contents(int file, const fs::path &name) {
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
      fail(target_, "cannot be examined");
    }
    write_all(file_, text, path_);
    keep_permissions(file_, before, path_);
    if (::fsync(file_) != 0) {
      fail(path_, "cannot be synchronized to disk");
    }
  }

  // Returns what the file is then.
  file_identity place() {
    const descriptor directory(::open(target_.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory < 0) {
      fail(target_, "cannot be replaced, since its directory cannot be opened");
    }
    if (std::rename(path_.c_str(), target_.c_str()) != 0) {
      fail(target_, "cannot be replaced");
    }
    is_placed_ = true;
    if (::fsync(directory) != 0) {
      fail(target_, "is replaced, but its directory cannot be synchronized to disk");
    }
    return identity_of(file_, target_);
  }

 private:
  int made() const {
    if (::unlink(path_.c_str()) != 0 && errno != ENOENT) {
      fail(path_, "is left from an interrupted write and cannot be removed");
    }
    const int file = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file < 0) {
      fail(path_, "cannot be created");
    }
    return file;
  }

  const fs::path &target_;
  const std::string path_;
  const descriptor file_;
  bool is_placed_ = false;
};

// Open for the lock alone, by which nothing is written. Who made the file may let others only read it, and that does;
// a file system over a network, though, may want it open for writing.
int opened_lock(const fs::path &file) {
  const int lock = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  return lock < 0 && errno == EACCES ? ::open(file.c_str(), O_RDONLY | O_CLOEXEC) : lock;
}

// An advisory lock (flock) on a file of that name, which is made when missing and stays. Waits until it is free.
class file_lock {
 public:
  explicit file_lock(const fs::path &file) : file_(opened_lock(file)) {
    if (file_ < 0) {
      fail(file, "cannot be opened to lock the device");
    }
    while (::flock(file_, LOCK_EX) != 0) {
      if (errno != EINTR) {
        fail(file, "cannot be locked");
      }
    }
  }

 private:
  descriptor file_;
};

}  // namespace

struct file_device::loaded_file {
  file_identity identity;
  std::shared_ptr<native_store> store;
};

namespace {

// Keeps what it edits, and the lock on the file, as long as it lives.
class file_transaction : public native_transaction {
 public:
  file_transaction(std::unique_ptr<file_lock> lock, std::shared_ptr<native_store> store,
                   store_transaction::save_function save)
      : lock_(std::move(lock)), store_(std::move(store)), inside_(*store_, std::move(save)) {}

  void apply(std::span<const native_operation> operations) override {
    inside_.apply(operations);
  }
  std::optional<std::vector<device_change>> effects() const override {
    return inside_.effects();
  }
  void commit() override {
    inside_.commit();
  }

 private:
  const std::unique_ptr<file_lock> lock_;  // on another file: the device's file is a new one after each write
  const std::shared_ptr<native_store> store_;
  store_transaction inside_;
};

}  // namespace

file_device::file_device(const fs::path &file, const schema &modules) : name_(file.string()), modules_(modules) {}

file_device::~file_device() = default;

const std::string &file_device::name() const {
  return name_;
}

const schema &file_device::modules() const {
  return modules_;
}

device_capabilities file_device::capabilities() const {
  return store_capabilities();
}

// What the file holds, read again when it is another one than the last time.
std::shared_ptr<native_store> file_device::current(const fs::path &target) const {
  const descriptor file(::open(target.c_str(), O_RDONLY | O_CLOEXEC));
  if (file < 0) {
    fail(name_, "cannot be opened");
  }
  const file_identity identity = identity_of(file, name_);
  const std::scoped_lock lock(mutex_);
  if (loaded_ == nullptr || !(loaded_->identity == identity)) {
    const document native = document::read(contents(file, name_), name_, modules_);
    auto store = std::make_shared<native_store>(native_data(native));
    loaded_ = std::make_unique<loaded_file>(loaded_file{identity, std::move(store)});
  }
  return loaded_->store;
}

document file_device::read(std::span<const native_operation> operations, datastore /*from*/) const {
  return current(target_of(name_))->read(operations, name_);
}

std::unique_ptr<native_transaction> file_device::begin(datastore /*to*/, transaction_use use) {
  const fs::path target = target_of(name_);
  if (use == transaction_use::trial) {
    return std::make_unique<file_transaction>(nullptr, current(target), store_transaction::save_function());
  }
  auto lock = std::make_unique<file_lock>(target.string() + ".lock");
  std::shared_ptr<native_store> store = current(target);
  const auto save = [this, target, store](const native_data &data) {
    // A reader may have loaded another file meanwhile.
    auto saved = std::make_unique<loaded_file>(loaded_file{{}, store});
    replacement made(target);
    made.fill(data.text());
    saved->identity = made.place();
    const std::scoped_lock loaded(mutex_);
    loaded_ = std::move(saved);
  };
  return std::make_unique<file_transaction>(std::move(lock), std::move(store), save);
}

}  // namespace yfw
