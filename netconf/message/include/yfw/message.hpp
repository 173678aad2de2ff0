// Messages of NETCONF (RFC 6241) and RESTCONF (RFC 8040): requests taken apart, errors written.
#pragma once

#include <iosfwd>
#include <optional>

#include "yfw/client_request.hpp"
#include "yfw/document.hpp"
#include "yfw/manifest.hpp"

namespace yfw {

// The request of an rpc, of its operation or of a bare data tree, whose operation is `bare_operation`. The result
// points into the document. Throws `client_error` for unsupported messages, filters and parameters.
client_request read_client_request(document &request, std::optional<client_operation> bare_operation);

// The error as `rpc-error` in an `rpc-reply` (RFC 6241, section 4.3), or in JSON as `errors` of RFC 8040, section 7.1.
void write_error_reply(std::ostream &out, const error &fault, const schema &modules, const manifest &description,
                       data_format format);

}  // namespace yfw
