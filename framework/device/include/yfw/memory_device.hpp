// A native device in memory, configuration and operational state together.
#pragma once

#include <memory>

#include "yfw/native_device.hpp"

namespace yfw {

class native_store;

class memory_device : public native_device {
 public:
  // Of native data as XML or JSON, bare or within rpc-reply, data or config. What the modules do not know is kept.
  // Throws `error` for a message that holds no data, for operations, for a list entry without its keys, and for nodes
  // that are given twice.
  explicit memory_device(document native);

  // Without data.
  explicit memory_device(const schema &modules);

  ~memory_device() override;

  const std::string &name() const override;
  const schema &modules() const override;
  device_capabilities capabilities() const override;
  document read(std::span<const native_operation> operations, datastore from) const override;
  std::unique_ptr<native_transaction> begin(datastore to, transaction_use use) override;

  // What `read` reads, as a tree.
  data_tree select(std::span<const native_operation> operations) const;

  // Nothing but the data, in the format that was read, and for XML within the same elements. Comments and layout are
  // not kept. Throws `error` when something that was read could not be written as it was: unknown data in JSON, whose
  // types are not known, and values with XML prefixes that no module's type explains.
  std::string text() const;

 private:
  const std::unique_ptr<native_store> store_;
};

}  // namespace yfw
