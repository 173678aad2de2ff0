#include <memory>

#include "commands.hpp"
#include "explain_reports.hpp"
#include "input.hpp"
#include "setup.hpp"

namespace ymap {
namespace {

constexpr const char *about_explain =
    "PATH is that of a leaf of the client's model, or of a native one for the way back; names may have the name of\n"
    "their module before them. Keys that are not given are made up. Each operation is tried alone, and an edit on\n"
    "an empty embedded device, to tell what a client reads before and after it. Without --value a set tries each\n"
    "enumeration value, identity and boolean, both ends of a range, and a text that fits the pattern. The functions\n"
    "are those that leave long-form trace lines; which one answered is told by its name: generated ones begin with\n"
    "two underscores.\n\n"
    "Examples:\n"
    "  ymap explain /interfaces/interface/ethernet/config/port-speed\n"
    "  ymap explain --op set --value SPEED_10GB \"/interfaces/interface[name='Eth0']/ethernet/config/port-speed\"\n"
    "  ymap explain /interface-configurations/interface-configuration/ethernet/speed";

struct explain_command_options {
  std::string path;
  setup_options setup;
  yfw::explain_options asked;
  bool as_json = false;
};

void run(const explain_command_options &options) {
  setup with(options.setup);
  const yfw::explanation told = explain(options.path, options.asked, with.schema(), with.plugin(), with.trace());
  write_result(options.as_json ? explanation_as_json(told) : explanation_as_text(told));
}

}  // namespace

void add_explain(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("explain", "Show what a mapping does with one leaf, and by which functions.");
  command.footer(about_explain);
  const auto options = std::make_shared<explain_command_options>();
  command.add_option("PATH", options->path, "the leaf")->required()->check(empty_name_fault);
  add_setup(command, options->setup);
  add_choice<std::string_view>(command, "--op", "only this operation (default: all three)",
                               {{"get", "get"}, {"set", "set"}, {"delete", "delete"}},
                               [options](std::string_view operation) { options->asked.operations = {operation}; });
  command.add_option("--value", options->asked.value, "what is set, or stands in the native leaf")->type_name("V");
  add_format(command, options->as_json);
  command.callback([options] { run(*options); });
}

}  // namespace ymap
