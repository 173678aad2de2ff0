// What a client asks for: a NETCONF message (RFC 6241) or a bare data tree, taken apart.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "yfw/document.hpp"
#include "yfw/node.hpp"

namespace yfw {

enum class client_operation { get, get_config, edit };

struct client_request {
  client_operation operation = client_operation::get;
  bool everything = false;                           // a read without a filter
  std::vector<yfw_node_t *> data;                    // the top-level data nodes, of the document
  uint32_t default_operation = YFW_OPERATION_MERGE;  // no_operation for "none"
  std::string source;                                // the datastore of a get-config; empty when not given
  // Parameters of an edit, passed on as they are; empty when not given.
  std::string target;
  std::string test_option;
  std::string error_option;

  bool is_read() const {
    return operation != client_operation::edit;
  }
};

// Whether the document is a bare data tree, which does not say what is to be done with it.
bool is_bare(const document &request);

// Takes the request apart. `bare_operation` says what is asked with a bare data tree and is not looked at otherwise.
// The result points into the document. Throws `error` for messages, filters and parameters that are not supported.
client_request read_client_request(document &request, std::optional<client_operation> bare_operation);

}  // namespace yfw
