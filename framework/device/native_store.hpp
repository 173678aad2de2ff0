// Native data for several threads: readers together, one transaction at a time.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <shared_mutex>

#include "native_data.hpp"
#include "native_edit.hpp"
#include "yfw/native_device.hpp"

namespace yfw {

class native_store {
 public:
  explicit native_store(native_data data) : data_(std::move(data)) {}

  data_tree select(std::span<const native_operation> operations) const;

  // See `native_device::read`; `name` is the device's.
  document read(std::span<const native_operation> operations, const std::string &name) const;

  std::string text() const;

  // These never change.
  const std::string &name() const {
    return data_.file();
  }
  const schema &modules() const {
    return data_.modules();
  }

 private:
  friend class store_transaction;
  native_data data_;
  std::mutex transaction_;            // held by the one there is
  mutable std::shared_mutex access_;  // held by a transaction alone from its first change on
};

// What the devices of this room can do.
device_capabilities store_capabilities();

// A transaction on a store, which it waits for.
class store_transaction : public native_transaction {
 public:
  // `save`, if any, is called by a commit that has effects, with the data as it is then; when it throws, nothing has
  // happened.
  using save_function = std::function<void(const native_data &)>;
  explicit store_transaction(native_store &store, save_function save = {})
      : store_(store), turn_(store.transaction_), save_(std::move(save)), edit_(store.data_) {}

  void apply(std::span<const native_operation> operations) override;
  std::optional<std::vector<device_change>> effects() const override;
  void commit() override;

 private:
  native_store &store_;
  std::unique_lock<std::mutex> turn_;
  std::unique_lock<std::shared_mutex> access_;
  save_function save_;
  native_edit edit_;  // goes first, and undoes what was not committed
};

}  // namespace yfw
