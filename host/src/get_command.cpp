#include <memory>
#include <optional>
#include <sstream>

#include "commands.hpp"
#include "device_options.hpp"
#include "input.hpp"
#include "yfw/file_device.hpp"
#include "yfw/mapping_service.hpp"
#include "yfw/message.hpp"
#include "yfw/node.hpp"
#include "yfw/writer.hpp"

namespace ymap {
namespace {

constexpr const char *get_help =
    "Examples:\n"
    "  ymap get --device examples/device.xml /interfaces/interface/ethernet/config\n"
    "  ymap get --device examples/device.xml --to json \\\n"
    "    \"/interfaces/interface[name='GigabitEthernet0/0/0/1']/ethernet/state/counters\"\n"
    "  ymap get --device examples/device.xml --filter examples/get-counters.xml\n\n"
    "XPATH is an absolute path in the client model; names may have a module name or prefix. The\n"
    "selected nodes are printed with the keys of the list entries around them. A filter is a\n"
    "NETCONF <get> or <get-config>, or a bare data tree.";

struct get_options {
  std::string xpath;
  std::string filter;
  std::optional<yfw::client_operation> operation;
  yfw::content content = yfw::content::all;
  device_options on;
};

void require_one_way(const get_options &options) {
  if (options.xpath.empty() == options.filter.empty()) {
    throw usage_error("expected either XPATH or --filter FILE");
  }
  if (options.operation == yfw::client_operation::get_config && options.content == yfw::content::nonconfig) {
    throw usage_error("--operation get-config excludes --content nonconfig, which is operational state only");
  }
}

void print(const yfw::reply &answer, yfw::data_format format) {
  std::ostringstream text;
  if (format == yfw::data_format::json) {
    write_json(text, answer.data);
  } else {
    write_xml(text, answer.data, {.wrappers = {{"data", yfw::netconf_ns}}});
  }
  write_notes(answer.notes);
  write_result(text.str());
}

void get_by_filter(const get_options &options, const yfw::mapping_service &service, setup &with) {
  yfw::document request = read_request(options.filter, with.schema());
  if (!is_bare(request) && options.operation) {
    throw usage_error(display_name(options.filter) + " is a message with an operation of its own: omit --operation");
  }
  const yfw::client_request client =
      read_client_request(request, options.operation.value_or(yfw::client_operation::get));
  if (!client.is_read()) {
    throw usage_error(display_name(options.filter) + " is an edit: use 'ymap edit'");
  }
  print(service.get(request, client, options.content), options.on.to.value_or(request.format()));
}

void run(const get_options &options) {
  require_one_way(options);
  work_on_device(options.on, [&](setup &with) {
    yfw::file_device device(options.on.device, with.schema());
    const yfw::mapping_service service(with.plugin(), device, with.trace());
    if (!options.filter.empty()) {
      get_by_filter(options, service, with);
      return;
    }
    print(service.find(options.xpath, options.operation.value_or(yfw::client_operation::get), options.content),
          options.on.to.value_or(yfw::data_format::xml));
  });
}

}  // namespace

void add_get(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("get", "Read from the device in the client model.");
  command.footer(get_help);
  const auto options = std::make_shared<get_options>();
  command.add_option("XPATH", options->xpath, "the nodes to read")->type_name("")->check(empty_name_error);
  command.add_option("--filter", options->filter, "a subtree filter instead, '-' for standard input")
      ->type_name("FILE")
      ->check(empty_name_error);
  add_device_options(command, options->on, "format of the result (default: that of the filter, or xml)");
  add_choice<yfw::client_operation>(
      command, "--operation", "configuration and state (get, default) or configuration (get-config)",
      {{"get", yfw::client_operation::get}, {"get-config", yfw::client_operation::get_config}},
      [options](yfw::client_operation operation) { options->operation = operation; });
  add_choice<yfw::content>(
      command, "--content", "all leaves (default), configuration or operational state (RFC 8040, section 4.8.1)",
      {{"all", yfw::content::all}, {"config", yfw::content::config}, {"nonconfig", yfw::content::nonconfig}},
      [options](yfw::content content) { options->content = content; });
  command.callback([options] { run(*options); });
}

}  // namespace ymap
