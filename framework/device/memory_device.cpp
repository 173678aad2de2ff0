#include "yfw/memory_device.hpp"

#include "native_store.hpp"

namespace yfw {

memory_device::memory_device(document native) : store_(std::make_unique<native_store>(native_data(native))) {}

memory_device::memory_device(const schema &modules) : store_(std::make_unique<native_store>(native_data(modules))) {}

memory_device::~memory_device() = default;

const std::string &memory_device::name() const {
  return store_->name();
}

const schema &memory_device::modules() const {
  return store_->modules();
}

device_capabilities memory_device::capabilities() const {
  return store_capabilities();
}

document memory_device::read(std::span<const native_operation> operations, datastore /*from*/) const {
  return store_->read(operations, name());
}

std::unique_ptr<native_transaction> memory_device::begin(datastore /*to*/, transaction_use /*use*/) {
  return std::make_unique<store_transaction>(*store_);
}

data_tree memory_device::select(std::span<const native_operation> operations) const {
  return store_->select(operations);
}

std::string memory_device::text() const {
  return store_->text();
}

}  // namespace yfw
