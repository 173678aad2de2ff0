// What a client asks for, and how a bare data tree says it.
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

// The request that a bare data tree makes with that operation. The result points into the document. Throws `error` for
// filters that are not supported and for operations on the elements around the data.
client_request bare_request(document &request, client_operation operation);

// What a message with data and one with an operation have in common; of readers of messages.
void refuse_operations(const document &request, const yfw_node_t &node);
void require_subtree(const document &request, const yfw_node_t &filter);
void trim_filter(const document &request, client_request &read);

}  // namespace yfw
