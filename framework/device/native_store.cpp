#include "native_store.hpp"

namespace yfw {

data_tree native_store::select(std::span<const native_operation> operations) const {
  const std::shared_lock lock(access_);
  return data_.select(operations);
}

document native_store::read(std::span<const native_operation> operations, const std::string &name) const {
  return document::from_tree(select(operations), name, true);
}

std::string native_store::text() const {
  const std::shared_lock lock(access_);
  return data_.text();
}

device_capabilities store_capabilities() {
  return {.reports_effects = true};
}

void store_transaction::apply(std::span<const native_operation> operations) {
  if (!access_.owns_lock()) {
    access_ = std::unique_lock(store_.access_);
  }
  edit_.apply(operations);
}

std::optional<std::vector<device_change>> store_transaction::effects() const {
  return edit_.effects();
}

void store_transaction::commit() {
  if (save_ && !edit_.effects().empty()) {
    save_(store_.data_);
  }
  edit_.keep();
  if (access_.owns_lock()) {
    access_.unlock();
  }
}

}  // namespace yfw
