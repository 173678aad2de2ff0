// The whole way of a request: client request, native request, device, native reply, client's answer.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/client_request.hpp"
#include "yfw/device.hpp"
#include "yfw/plugin.hpp"
#include "yfw/reply.hpp"
#include "yfw/trace.hpp"

namespace yfw {

struct edit_outcome {
  std::vector<device_change> changes;
  std::vector<std::string> notes;  // one line each
};

// Works for clients through one plug-in. All errors that a client causes or can do something about are `client_error`s,
// with the place in the request.
class engine {
 public:
  // Both must outlive the engine.
  engine(const plugin &mapping, trace_log &log) : mapping_(mapping), log_(log) {}

  // Answers a read: the data that the client's subtree filter selects (RFC 6241, section 6), of that content, with the
  // keys of the list entries around it. The device is asked only for paths that the mapping names.
  reply get(const device &native, document &request, const client_request &client, content wanted) const;

  // Answers an XPath expression: the subtrees that it selects, with the keys of the list entries around them. Names may
  // stand without prefix, or with the name or prefix of a module. What is read is bounded by the plain steps and keys
  // that the expression begins with.
  reply find(const device &native, std::string_view xpath, client_operation operation, content wanted) const;

  // Carries out an edit, whole or not at all, and tells what it does to the device; with test-option "test-only" that
  // is all. `create` and `delete` fail by what the client would read (RFC 6241, section 7.2), never by what the mapping
  // makes of them. error-option "continue-on-error" is errors.
  edit_outcome edit(device &native, document &request, const client_request &client) const;

  // One operation, YFW_OPERATION_…, on one node of the client's model: with a value that of a leaf is written.
  edit_outcome edit_node(device &native, std::string_view path, const std::optional<std::string> &value,
                         uint32_t operation) const;

 private:
  const plugin &mapping_;
  trace_log &log_;
};

}  // namespace yfw
