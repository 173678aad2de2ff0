// A native device in a file, configuration and operational state together.
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>

#include "yfw/native_device.hpp"

namespace yfw {

class native_store;

// Reads see the file as it is when they begin, one whole state; they wait for no other process, and in this one for a
// transaction that has begun to apply. Transactions of all processes wait for each other by a lock on FILE.lock, which
// stays. A commit replaces the file: whenever the process or the machine stops, it is the old or the new one, whole,
// and once the commit returns it is the new one, on disk, with its permissions kept; one without effects writes
// nothing. FILE.ymap-new exists meanwhile; if the process is killed, the next writer removes it. Symbolic links are
// followed to the file that they lead to.
//
// All members throw `client_error` for a file that is missing, cannot be read, locked or replaced, is not a regular one
// or does not hold native data as `memory_device` takes it. If a commit fails, the old file still stands, unless the
// error says that the new one does and only its durability is in doubt.
class file_device : public native_device {
 public:
  file_device(const std::filesystem::path &file, const schema &modules);
  ~file_device() override;

  const std::string &name() const override;
  const schema &modules() const override;
  device_capabilities capabilities() const override;
  document read(std::span<const native_operation> operations, datastore from) const override;
  std::unique_ptr<native_transaction> begin(datastore to, transaction_use use) override;

 private:
  std::shared_ptr<native_store> current(const std::filesystem::path &target) const;

  const std::string name_;
  const schema &modules_;
  struct loaded_file;
  mutable std::mutex mutex_;  // of what is loaded
  mutable std::unique_ptr<loaded_file> loaded_;
};

}  // namespace yfw
