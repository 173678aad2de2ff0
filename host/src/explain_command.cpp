#include <memory>

#include "commands.hpp"
#include "explain_reports.hpp"
#include "input.hpp"
#include "setup.hpp"

namespace ymap {
namespace {

constexpr const char *explain_help =
    "Examples:\n"
    "  ymap explain /interfaces/interface/ethernet/config/port-speed\n"
    "  ymap explain --operation set --value SPEED_10GB \\\n"
    "    \"/interfaces/interface[name='Eth0']/ethernet/config/port-speed\"\n"
    "  ymap explain /interface-configurations/interface-configuration/ethernet/speed\n\n"
    "PATH names a leaf of the client model, or of the native model for replies; names may have a module name as\n"
    "prefix, and missing keys become sample keys. Each operation is tried alone, an edit on an empty device in\n"
    "memory, with what a client reads before and after it. Without --value, a set tries each enumeration value,\n"
    "identity and boolean, both ends of a range, and a string that matches the pattern. The functions are those\n"
    "with trace lines; names of generated functions begin with two underscores.";

struct explain_command_options {
  std::string path;
  setup_options setup;
  yfw::explain_options request;
  bool as_json = false;
};

void run(const explain_command_options &options) {
  setup with(options.setup);
  const yfw::explanation explanation =
      explain(options.path, options.request, with.schema(), with.plugin(), with.trace());
  write_result(options.as_json ? explanation_as_json(explanation) : explanation_as_text(explanation));
}

}  // namespace

void add_explain(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("explain", "Show what a mapping does with one leaf, and in which functions.");
  command.footer(explain_help);
  const auto options = std::make_shared<explain_command_options>();
  command.add_option("PATH", options->path, "the leaf")->required()->check(empty_name_error);
  add_setup(command, options->setup);
  add_choice<std::string_view>(command, "--operation", "only this operation (default: all three)",
                               {{"get", "get"}, {"set", "set"}, {"delete", "delete"}},
                               [options](std::string_view operation) { options->request.operations = {operation}; });
  command.add_option("--value", options->request.value, "the value to set, or the value of the native leaf")
      ->type_name("V");
  add_format(command, options->as_json);
  command.callback([options] { run(*options); });
}

}  // namespace ymap
