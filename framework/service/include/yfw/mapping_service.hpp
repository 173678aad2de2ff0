// A client's requests carried out on a native device: request, native operations, device, native reply, answer.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/client_request.hpp"
#include "yfw/native_device.hpp"
#include "yfw/reply.hpp"

namespace yfw {

class plugin;
class trace_log;

struct edit_outcome {
  std::vector<device_change> changes;  // empty when the device cannot report its effects, too
  std::vector<note> notes;
};

// Serves clients of one device through one plug-in. All errors that a client causes or can do something about are
// `client_error`s, with the place in the request.
class mapping_service {
 public:
  // All three must outlive the service.
  mapping_service(const plugin &mapping, native_device &device, trace_log &log)
      : mapping_(mapping), device_(device), log_(log) {}

  // Answers a read: the data that the client's subtree filter selects (RFC 6241, section 6), of that content, with the
  // keys of the list entries around it. The device is asked only for paths that the mapping names, once.
  reply get(document &request, const client_request &client, content wanted) const;

  // Answers an XPath expression: the subtrees that it selects, with the keys of the list entries around them; names as
  // for `read_expression`. What is read is bounded by the plain steps and keys that the expression begins with.
  reply find(std::string_view xpath, client_operation operation, content wanted) const;

  // Carries out an edit, whole or not at all, as one transaction on the device, and reports what it does to it; a trial
  // and test-option "test-only" change nothing. `create`, `delete` and operation "none" fail by what the client would
  // read (RFC 6241, section 7.2), never by what the mapping makes of them; all that they depend on is read at once.
  // error-option "continue-on-error" is rejected.
  edit_outcome edit(document &request, const client_request &client,
                    transaction_use use = transaction_use::commit) const;

  // One operation, YFW_OPERATION_…, on one node of the client's model: with a value that of a leaf is written.
  edit_outcome edit_node(std::string_view path, const std::optional<std::string> &value, uint32_t operation,
                         transaction_use use = transaction_use::commit) const;

 private:
  reply answer(document &request, const client_request &client, content wanted) const;

  const plugin &mapping_;
  native_device &device_;
  trace_log &log_;
};

}  // namespace yfw
