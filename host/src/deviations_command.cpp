#include <ctime>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>

#include "commands.hpp"
#include "input.hpp"
#include "measurement.hpp"
#include "setup.hpp"
#include "yfw/deviations.hpp"
#include "yfw/error.hpp"

namespace ymap {
namespace {

constexpr const char *deviations_help =
    "Examples:\n"
    "  ymap deviations > acme-ethernet-deviations.yang\n"
    "  ymap deviations --name acme-ethernet-deviations --namespace urn:acme:ethernet-deviations\n"
    "  ymap deviations --check acme-ethernet-deviations.yang\n\n"
    "The module follows from a measurement (see 'ymap coverage') and is valid together with the modules\n"
    "in force. An unmapped node becomes 'not-supported', a read-only node 'config false', and an\n"
    "enumeration with rejected values a smaller one. Limits that no deviation can express are listed in\n"
    "the module's description. Deviations that would break the model are rejected: of keys, mandatory\n"
    "nodes, and nodes that a 'when', 'must' or leafref of another node refers to.";

struct deviations_options {
  setup_options setup;
  yfw::deviation_module_names names;
  std::string check;
  bool skip_breaking = false;
};

constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view digits = "0123456789";

// Checks as CLI11 expects them: the error of a value, "" for a valid one.
std::string identifier_error(const std::string &text) {
  const std::string first = std::string(letters) + "_";
  const std::string others = first + std::string(digits) + "-.";
  const bool is_identifier =
      !text.empty() && first.find(text.front()) != first.npos && text.find_first_not_of(others) == text.npos;
  return is_identifier ? ""
                       : "invalid module name " + yfw::in_quotes(text) + ", expected letters, digits, '_', '-' and '.'";
}

std::string uri_error(const std::string &text) {
  const bool is_uri = text.find(':') != text.npos && text.find_first_of(" \t\n\"<>\\") == text.npos;
  return is_uri ? "" : "invalid URI " + yfw::in_quotes(text) + ", expected one like 'urn:acme:deviations'";
}

std::string date_error(const std::string &text) {
  std::tm date{};
  std::istringstream in(text);
  in >> std::get_time(&date, "%Y-%m-%d");
  // timegm() changes a date that does not exist.
  const std::tm read = date;
  const bool is_date = !in.fail() && text.size() == 10 && timegm(&date) != -1 && read.tm_mday == date.tm_mday;
  return is_date ? "" : "invalid date " + yfw::in_quotes(text) + ", expected one like '2024-06-01'";
}

// The name for deviations of the first module that requests may contain.
std::string default_name(const yfw::plugin &plugin) {
  for (const yfw::entry_point &entry : plugin.description().entry_points) {
    if (entry.dir == yfw::direction::ox) {
      return entry.module + "-deviations";
    }
  }
  throw yfw::error("the plug-in serves no requests, so there is no module to deviate from");
}

// A module with the name or namespace of a module in force could not be loaded beside it.
void require_new_module(const yfw::deviation_module_names &names, const yfw::schema &modules) {
  if (!names.name.empty() && !modules.ns_of_module(names.name).empty()) {
    throw usage_error("--name: module " + yfw::in_quotes(names.name) + " exists already, expected a new name like '" +
                      names.name + "-deviations'");
  }
  if (const std::string_view module = modules.module_of_ns(names.ns); !module.empty()) {
    throw usage_error("--namespace: " + yfw::in_quotes(names.ns) + " is the namespace of module '" +
                      std::string(module) + "', expected a new one like '" + names.ns + "-deviations'");
  }
}

void require_none_breaking(const yfw::deviations &plan) {
  for (const std::string &rejected : plan.rejected) {
    std::cerr << "ymap: " << rejected << '\n';
  }
  if (!plan.rejected.empty()) {
    throw yfw::error("these deviations would break the model; --skip-breaking writes the others");
  }
}

void require_no_drift(const deviations_options &options, const yfw::deviations &plan, const yfw::coverage &measured,
                      const yfw::schema &schema) {
  const std::string file = display_name(options.check);
  const yfw::deviations stated = read_deviations(read_text(options.check), file, schema);
  std::string text;
  const std::vector<std::string> lines = drift(stated, plan, measured);
  for (const std::string &line : lines) {
    text += line + "\n";
  }
  write_result(text);
  if (!lines.empty()) {
    throw yfw::error(yfw::place{file, 0, {}}, "differs from the measurement; 'ymap deviations' writes a new module");
  }
}

void run(const deviations_options &options) {
  setup with(options.setup);
  require_new_module(options.names, with.schema());
  const yfw::coverage measured = measure(with);
  yfw::deviations plan = plan_deviations(measured, with.schema());
  if (options.skip_breaking) {
    for (const std::string &rejected : plan.rejected) {
      plan.remarks.push_back(rejected + ", although it is not supported");
    }
  } else {
    require_none_breaking(plan);
  }
  if (!options.check.empty()) {
    require_no_drift(options, plan, measured, with.schema());
    return;
  }
  yfw::deviation_module_names names = options.names;
  names.name = names.name.empty() ? default_name(with.plugin()) : names.name;
  names.ns = names.ns.empty() ? "urn:ymap:" + names.name : names.ns;
  write_result(deviation_module(plan, measured, with.schema(), names));
}

}  // namespace

void add_deviations(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("deviations", "Write the YANG deviation module of a mapping.");
  command.footer(deviations_help);
  const auto options = std::make_shared<deviations_options>();
  add_setup(command, options->setup);
  CLI::Option *name = command
                          .add_option("--name", options->names.name,
                                      "name of the module (default: the served module's name and -deviations)")
                          ->type_name("NAME")
                          ->check(identifier_error);
  CLI::Option *ns =
      command.add_option("--namespace", options->names.ns, "namespace of the module (default: urn:ymap:NAME)")
          ->type_name("URI")
          ->check(uri_error);
  CLI::Option *revision = command
                              .add_option("--revision", options->names.revision,
                                          "revision of the module (default: the newest of the deviated modules)")
                              ->type_name("DATE")
                              ->check(date_error);
  command.add_option("--check", options->check, "compare this module with the measurement; fail when it differs")
      ->type_name("FILE")
      ->check(empty_name_error)
      ->excludes(name)
      ->excludes(ns)
      ->excludes(revision);
  command.add_flag("--skip-breaking", options->skip_breaking,
                   "omit deviations that would break the model, and list them in the module's description");
  command.callback([options] { run(*options); });
}

}  // namespace ymap
