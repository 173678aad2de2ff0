// The fixture of the plug-in's tests: a context with its request, and a call whose whole effect is returned as text.
#pragma once

#include "recording_framework.hpp"
#include "tree_builder.hpp"

#include "ymap_frame.h"
#include "ymap_generated.h"

#include <gtest/gtest.h>

#include <string>

namespace support {

// "0", "51", "BAD_TREE", …, or the number in hexadecimal.
std::string status_name(uint32_t status);

// A context with its request, output node and framework.
struct mapping_context {
  mapping_context();
  mapping_context(const mapping_context &) = delete;
  mapping_context &operator=(const mapping_context &) = delete;

  yfw_request_t request{YFW_REQUEST_READ_ALL};
  yfw_request_record_t record{};
  yfw_ctx_t ctx{};
  yfw_node_t out = leaf("output", oc).fields;
  recording_framework framework{&ctx, &out};
};

class mapping_test : public testing::Test, protected mapping_context {
 protected:
  // Calls `function` with the root of `input` and tells all that came of it: the framework's lines, "status …", then
  // what the call changed: the record, nodes of the tree, the output node. Begins with a line feed.
  std::string answer(ymap_node_function *function, const description &input);
  // The same of a function that was called already.
  std::string answer(uint32_t status, const tree &input);
};

}  // namespace support
