#include <memory>
#include <optional>
#include <sstream>

#include "commands.hpp"
#include "input.hpp"
#include "setup.hpp"
#include "yfw/message.hpp"
#include "yfw/native_request.hpp"
#include "yfw/writer.hpp"

namespace ymap {
namespace {

constexpr const char *request_help =
    "Examples:\n"
    "  ymap request --to paths examples/set-speed.xml\n"
    "  ymap request --to paths --operation get examples/get-ethernet.json\n"
    "  ymap request --trace examples/get-counters.xml\n\n"
    "FILE is XML or RFC 7951 JSON: a NETCONF <rpc> with <get>, <get-config> (subtree filter) or\n"
    "<edit-config>, or a bare data tree with --operation. --to paths prints a native operation per\n"
    "line: read, set or delete, path, namespace, and the value, if any, separated by tabs. Control\n"
    "characters in them are \\t, \\n, \\r or \\xHH, and a backslash is \\\\.";

enum class output_format { xml, json, paths };

struct request_options {
  std::string file;
  setup_options setup;
  std::optional<yfw::client_operation> operation;
  output_format to = output_format::xml;
};

const char *to_string(yfw::operation_kind kind) {
  switch (kind) {
    case yfw::operation_kind::set:
      return "set";
    case yfw::operation_kind::remove:
      return "delete";
    case yfw::operation_kind::read:
      break;
  }
  return "read";
}

// Kind, path, namespace and value, if any, with tabs between them.
std::string as_paths(const yfw::native_request &request) {
  std::ostringstream text;
  for (const yfw::native_operation &call : request.calls) {
    text << to_string(call.kind) << '\t' << escaped(call.path()) << '\t' << yfw::ns(call.steps.back().node);
    if (call.value) {
      text << '\t' << escaped(*call.value);
    }
    text << '\n';
  }
  return text.str();
}

yfw::wrapper netconf_element(const std::string &tag, const std::string &text = {}) {
  return {tag, yfw::netconf_ns, {}, {}, text};
}

// The elements around the native tree in XML: the client's message without the parts of its session.
std::vector<yfw::wrapper> envelope(const yfw::client_request &client) {
  if (client.is_read()) {
    return {{"filter", yfw::netconf_ns, {{"type", "subtree"}}}};
  }
  yfw::wrapper edit = netconf_element("edit-config");
  edit.before.push_back(netconf_element("target"));
  edit.before.back().before.push_back(netconf_element(client.target.empty() ? "running" : client.target));
  // "none" has been applied to leaves, but not to the list entries around them.
  if (client.default_operation == yfw::no_operation) {
    edit.before.push_back(netconf_element("default-operation", "none"));
  }
  if (!client.test_option.empty()) {
    edit.before.push_back(netconf_element("test-option", client.test_option));
  }
  if (!client.error_option.empty()) {
    edit.before.push_back(netconf_element("error-option", client.error_option));
  }
  return {edit, netconf_element("config")};
}

std::string as_data(const yfw::native_request &request, const yfw::schema &schema, output_format format) {
  const yfw::data_tree tree = native_tree(request, schema);
  std::ostringstream text;
  const uint32_t default_operation = request.client.default_operation;
  if (format == output_format::json) {
    write_json(text, tree, {.default_operation = default_operation});
  } else {
    write_xml(text, tree, {.wrappers = envelope(request.client), .default_operation = default_operation});
  }
  return text.str();
}

void require_operation(const yfw::document &document, const request_options &options) {
  const std::string file = display_name(options.file);
  if (is_bare(document) && !options.operation) {
    throw usage_error(file + " is a bare data tree: add --operation get, get-config or edit");
  }
  if (!is_bare(document) && options.operation) {
    throw usage_error(file + " is a message with an operation of its own: omit --operation");
  }
}

void run(const request_options &options) {
  setup with(options.setup);
  const std::string file = display_name(options.file);
  yfw::document document = yfw::document::read(read_text(options.file), file, with.schema());
  require_operation(document, options);
  yfw::native_request request =
      translate_request(document, read_client_request(document, options.operation), with.plugin(), with.trace());
  if (request.calls.empty()) {
    request.notes.push_back({{file}, yfw::note_kind::unmapped, "the request contains no mapped node"});
  }
  const std::string result =
      options.to == output_format::paths ? as_paths(request) : as_data(request, with.schema(), options.to);
  write_notes(request.notes);
  write_result(result);
}

}  // namespace

void add_request(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("request", "Translate a client's request into native operations.");
  command.footer(request_help);
  const auto options = std::make_shared<request_options>();
  command.add_option("FILE", options->file, "the request, '-' for standard input")->required()->check(empty_name_error);
  add_setup(command, options->setup);
  add_choice<yfw::client_operation>(command, "--operation", "the operation of a bare data tree",
                                    {{"get", yfw::client_operation::get},
                                     {"get-config", yfw::client_operation::get_config},
                                     {"edit", yfw::client_operation::edit}},
                                    [options](yfw::client_operation operation) { options->operation = operation; });
  add_choice<output_format>(
      command, "--to", "a subtree filter or edit-config in XML (default) or JSON, or a line per native operation",
      {{"xml", output_format::xml}, {"json", output_format::json}, {"paths", output_format::paths}},
      [options](output_format format) { options->to = format; });
  command.callback([options] { run(*options); });
}

}  // namespace ymap
