#include <functional>
#include <memory>
#include <optional>

#include "commands.hpp"
#include "device_options.hpp"
#include "input.hpp"
#include "yfw/file_device.hpp"
#include "yfw/mapping_service.hpp"
#include "yfw/message.hpp"

namespace ymap {
namespace {

constexpr const char *set_help =
    "Example:\n"
    "  ymap set --device device.xml --dry-run \\\n"
    "    \"/interfaces/interface[name='GigabitEthernet0/0/0/1']/ethernet/config/port-speed\" SPEED_1GB\n\n"
    "PATH names a leaf of the client model, with the keys of all lists above it. --dry-run and\n"
    "--verbose print the native nodes that are created (+), deleted (-) or changed (~). The file is\n"
    "replaced atomically.";

constexpr const char *delete_help =
    "Example:\n"
    "  ymap delete --device device.xml \\\n"
    "    \"/interfaces/interface[name='GigabitEthernet0/0/0/1']/ethernet/config/mac-address\"\n\n"
    "PATH names a leaf or container of the client model, with the keys of all lists above it. The\n"
    "node must exist, except with --operation remove.";

constexpr const char *edit_help =
    "Example:\n"
    "  ymap edit --device device.xml --dry-run examples/set-speed.xml\n\n"
    "FILE is XML or RFC 7951 JSON: a NETCONF <rpc> with <edit-config>, or a bare data tree, which is\n"
    "merged. The edit is applied completely or, when anything fails, not at all.";

struct edit_options {
  std::string what;  // the path or file
  std::optional<std::string> value;
  uint32_t operation = YFW_OPERATION_MERGE;
  bool is_dry = false;
  bool is_verbose = false;
  device_options on;
};

// "+ path value", "- path value", "~ path old -> new", each in one line whatever they hold.
std::string line(const yfw::device_change &change) {
  std::string text = (!change.before ? "+ " : !change.after ? "- " : "~ ") + change.path;
  text += change.before && !change.before->empty() ? " " + *change.before : "";
  text += change.before && change.after ? " ->" : "";
  text += change.after && !change.after->empty() ? " " + *change.after : "";
  return escaped(text) + '\n';
}

// `done` is what is so even if they cannot be printed.
void print(const std::vector<yfw::device_change> &changes, const std::string &done) {
  std::string text;
  for (const yfw::device_change &change : changes) {
    text += line(change);
  }
  write_result(text, done);
}

// Carries out an edit of the device and prints what it did.
void edit_device(const edit_options &options, bool is_dry, setup &with,
                 const std::function<yfw::edit_outcome(const yfw::mapping_service &, yfw::transaction_use)> &edit) {
  yfw::file_device device(options.on.device, with.schema());
  const yfw::mapping_service service(with.plugin(), device, with.trace());
  const yfw::edit_outcome outcome = edit(service, is_dry ? yfw::transaction_use::trial : yfw::transaction_use::commit);
  write_notes(outcome.notes);
  if (is_dry || options.is_verbose) {
    print(outcome.changes, is_dry ? "" : "the device " + yfw::in_quotes(options.on.device) + " has been changed");
  }
}

void run_on_path(const edit_options &options) {
  work_on_device(options.on, [&](setup &with) {
    edit_device(options, options.is_dry, with, [&](const yfw::mapping_service &service, yfw::transaction_use use) {
      return service.edit_node(options.what, options.value, options.operation, use);
    });
  });
}

void run_on_file(const edit_options &options) {
  work_on_device(options.on, [&](setup &with) {
    yfw::document request = read_request(options.what, with.schema());
    const yfw::client_request client = read_client_request(request, yfw::client_operation::edit);
    if (client.is_read()) {
      throw usage_error(display_name(options.what) + " is a read: use 'ymap get --filter'");
    }
    edit_device(options, options.is_dry || client.test_option == "test-only", with,
                [&](const yfw::mapping_service &service, yfw::transaction_use use) {
                  return service.edit(request, client, use);
                });
  });
}

void add_edit_options(CLI::App &command, edit_options &options) {
  add_device_options(command, options.on, "print an error as an rpc-error on standard output, in this format");
  command.add_flag("--dry-run", options.is_dry, "print the native changes without applying them");
  command.add_flag("-v,--verbose", options.is_verbose, "print the native changes");
}

void add_operation(CLI::App &command, edit_options &options, const std::string &help,
                   const std::map<std::string, uint32_t> &words) {
  add_choice<uint32_t>(command, "--operation", help, words,
                       [&options](uint32_t operation) { options.operation = operation; });
}

}  // namespace

void add_set(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("set", "Set a leaf of the client model on the device.");
  command.footer(set_help);
  const auto options = std::make_shared<edit_options>();
  command.add_option("PATH", options->what, "the leaf")->required()->type_name("")->check(empty_name_error);
  command.add_option("VALUE", options->value, "its value")->required()->type_name("");
  add_operation(command, *options, "merge (default), replace, or create, which fails when the leaf exists",
                {{"merge", YFW_OPERATION_MERGE}, {"replace", YFW_OPERATION_REPLACE}, {"create", YFW_OPERATION_CREATE}});
  add_edit_options(command, *options);
  command.callback([options] { run_on_path(*options); });
}

void add_delete(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("delete", "Delete a leaf or container of the client model on the device.");
  command.footer(delete_help);
  const auto options = std::make_shared<edit_options>();
  options->operation = YFW_OPERATION_DELETE;
  command.add_option("PATH", options->what, "the leaf or container")
      ->required()
      ->type_name("")
      ->check(empty_name_error);
  add_operation(command, *options, "delete (default), which fails when the node does not exist, or remove",
                {{"delete", YFW_OPERATION_DELETE}, {"remove", YFW_OPERATION_REMOVE}});
  add_edit_options(command, *options);
  command.callback([options] { run_on_path(*options); });
}

void add_edit(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("edit", "Apply an edit-config to the device.");
  command.footer(edit_help);
  const auto options = std::make_shared<edit_options>();
  command.add_option("FILE", options->what, "the edit, '-' for standard input")->required()->check(empty_name_error);
  add_edit_options(command, *options);
  command.callback([options] { run_on_file(*options); });
}

}  // namespace ymap
