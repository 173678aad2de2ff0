// A client's request, and its form as a bare data tree.
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
  // Parameters of an edit as given; empty when not given.
  std::string target;
  std::string test_option;
  std::string error_option;

  bool is_read() const {
    return operation != client_operation::edit;
  }
};

// Whether the document is a bare data tree, which carries no operation.
bool is_bare(const document &request);

// The request of a bare data tree with that operation. The result points into the document. Throws `error` for
// unsupported filters and for operations on the elements around the data.
client_request bare_request(document &request, client_operation operation);

// Shared by the readers of bare data and of messages. They throw `client_error`.
void require_no_operations(const document &request, const yfw_node_t &node);
void require_subtree(const document &request, const yfw_node_t &filter);
void trim_filter(const document &request, client_request &read);

}  // namespace yfw
