#include <sstream>

#include "command_line.hpp"
#include "input.hpp"
#include "setup.hpp"
#include "yfw/native_request.hpp"
#include "yfw/writer.hpp"

namespace ymap {
namespace {

const char *word(yfw::call_kind kind) {
  switch (kind) {
    case yfw::call_kind::set:
      return "set";
    case yfw::call_kind::remove:
      return "delete";
    case yfw::call_kind::read:
      break;
  }
  return "read";
}

// Kind, path, namespace and value, if any, between tabs.
std::string as_paths(const yfw::native_request &request) {
  std::ostringstream text;
  for (const yfw::native_call &call : request.calls) {
    text << word(call.kind) << '\t' << call.path() << '\t' << yfw::ns(call.steps.back().node);
    if (call.value) {
      text << '\t' << *call.value;
    }
    text << '\n';
  }
  return text.str();
}

yfw::wrapper netconf_element(const std::string &tag) {
  return {tag, yfw::netconf_ns};
}

// What stands around the native tree in XML: the same message as the client's, less what belongs to its session.
std::vector<yfw::wrapper> envelope(const yfw::client_request &client) {
  if (client.is_read()) {
    return {{"filter", yfw::netconf_ns, {{"type", "subtree"}}}};
  }
  yfw::wrapper edit = netconf_element("edit-config");
  edit.before.push_back(netconf_element("target"));
  edit.before.back().before.push_back(netconf_element(client.target.empty() ? "running" : client.target));
  return {edit, netconf_element("config")};
}

std::string as_data(const yfw::native_request &request, const yfw::schema &schema, output_format format) {
  const yfw::data_tree tree = native_tree(request, schema);
  std::ostringstream text;
  if (format == output_format::json) {
    write_json(text, tree);
  } else {
    write_xml(text, tree, {.wrappers = envelope(request.client)});
  }
  return text.str();
}

void require_operation(const yfw::document &document, const request_command &command) {
  const std::string file = display_name(command.common.file);
  if (is_bare(document) && !command.operation) {
    throw usage_error(file + " holds a bare data tree: say --operation get, get-config or edit");
  }
  if (!is_bare(document) && command.operation) {
    throw usage_error(file + " holds a message that says its own operation: leave --operation out");
  }
}

}  // namespace

void run(const request_command &command) {
  setup with(command.common);
  yfw::document document = yfw::document::read(read_text(command.common.file), display_name(command.common.file),
                                               with.schema());
  require_operation(document, command);
  yfw::native_request request = translate_request(document, read_client_request(document, command.operation),
                                                  with.plugin(), with.trace());
  if (request.calls.empty()) {
    request.notes.push_back(display_name(command.common.file) + ": asks for nothing that is mapped");
  }
  const std::string result = command.to == output_format::paths ? as_paths(request)
                                                                : as_data(request, with.schema(), command.to);
  write_notes(request.notes);
  write_result(result);
}

}  // namespace ymap
