#include "mapping_test.hpp"

#include <sstream>

namespace support {

std::string status_name(uint32_t status) {
  switch (status) {
    case YMAP_OK:
      return "0";
    case YMAP_NOT_MAPPED:
      return "51";
    case 0xaaf29e00:
      return "BAD_TREE";
    case 0xaaf2a000:
      return "INVALID_ARGS";
    case 0xaaf2e600:
      return "INVALID_VALUE";
    case 0xaaf2ec00:
      return "NO_MATCH";
    case 0xaaf2ee00:
      return "UNSUPPORTED_TAG";
    default:
      std::ostringstream text;
      text << std::hex << status;
      return text.str();
  }
}

mapping_context::mapping_context() {
  static char handles[3];
  record.request = &request;
  ctx.request = &record;
  ctx.error_log = &handles[0];
  ctx.trace_log = &handles[1];
  ctx.ring_trace = &handles[2];
}

std::string mapping_test::answer(ymap_node_function *function, const description &input) {
  tree built(input);
  return answer(function(&ctx, built.root(), &out), built);
}

std::string mapping_test::answer(uint32_t status, const tree &input) {
  std::ostringstream text;
  text << "\n" << framework.calls << "status " << status_name(status) << "\n" << std::hex;
  if (record.error_tag != nullptr) {
    text << "error tag " << record.error_tag << "\n";
  }
  if (record.walker_flags != 0) {
    text << "walker flags " << record.walker_flags << "\n";
  }
  if (record.expansion_flags != 0) {
    text << "expansion flags " << record.expansion_flags << "\n";
  }
  if (record.expansion_in_progress != 0) {
    text << "expansion in progress\n";
  }
  text << input.changes() << node_change(leaf("output", oc).fields, out);
  return text.str();
}

}  // namespace support
