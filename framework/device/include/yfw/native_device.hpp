// A device that serves its native YANG models: what is above knows nothing else of it, be it in memory, a file or
// behind a protocol.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "yfw/document.hpp"
#include "yfw/error.hpp"
#include "yfw/native_operation.hpp"
#include "yfw/schema.hpp"

namespace yfw {

// The configuration datastores of RFC 6241, section 5.1.
enum class datastore { running, candidate, startup };

struct device_capabilities {
  bool has_candidate = false;    // :candidate (RFC 6241, section 8.3)
  bool has_startup = false;      // :startup (section 8.7)
  bool can_validate = false;     // :validate (section 8.6)
  bool reports_effects = false;  // `native_transaction::effects`
};

// The net effect of a transaction on one native node. No value: absent; of list entries and containers with presence
// the value is empty. Other containers have no part in it.
struct device_change {
  std::string path;
  std::optional<std::string> before, after;
};

// An operation that a device rejects. The text has the native path.
class operation_error : public client_error {
 public:
  operation_error(size_t rejected, const std::string &text, error_tag tag)
      : client_error({}, text, tag), index_(rejected) {}

  // Of the operation among those of the call.
  size_t index() const noexcept {
    return index_;
  }

 private:
  size_t index_;
};

// Edits that take effect together, or not at all: destroyed without `commit`, nothing has happened. For one thread.
class native_transaction {
 public:
  virtual ~native_transaction() = default;

  // Carries out sets and deletes as RFC 6241, section 7.2, specifies, in their order; reads are ignored. List entries
  // and containers above a value are created; of what a delete leaves, containers without content and presence go,
  // while a list entry stays, which exists by its keys. A delete creates nothing. Throws `operation_error` for `create`
  // of what exists, `delete` of what does not, operational data, keys, and values that the native model does not have;
  // the transaction can only be dropped then. From the first call to the commit, this thread does not read the device.
  virtual void apply(std::span<const native_operation> operations) = 0;

  // What `apply` has done so far, in the order in which nodes were first touched; none when the device cannot say.
  virtual std::optional<std::vector<device_change>> effects() const = 0;

  // Makes the device have it, durably where the device is durable. Throws `error` when that fails.
  virtual void commit() = 0;
};

// What a transaction is for: one that only tries an edit out is never committed, so that a device need not be locked
// for it beyond this process.
enum class transaction_use { commit, trial };

class native_device {
 public:
  virtual ~native_device() = default;

  // For messages: a file, or user@host:port.
  virtual const std::string &name() const = 0;

  virtual const schema &modules() const = 0;
  virtual device_capabilities capabilities() const = 0;

  // The reply to the reads among the operations, in one round trip: what they name, nothing else. A list entry that one
  // leads to comes with its keys, also when it has none of the leaves that are asked for, as the nodes that a subtree
  // filter matches by content do (RFC 6241, section 6.2.5). A step without keys leads to all entries. Several threads
  // may read. Throws `error` when the device cannot be read.
  virtual document read(std::span<const native_operation> operations, datastore from) const = 0;

  // Begins a transaction; while it lives, another one that would commit waits. Throws `error` when the device cannot
  // be edited.
  virtual std::unique_ptr<native_transaction> begin(datastore to, transaction_use use) = 0;
};

}  // namespace yfw
