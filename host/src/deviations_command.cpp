#include <ctime>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>

#include "commands.hpp"
#include "input.hpp"
#include "setup.hpp"
#include "yfw/deviations.hpp"
#include "yfw/error.hpp"

namespace ymap {
namespace {

constexpr const char *about_deviations =
    "The module is written from a measurement (see 'ymap coverage') and is valid together with the\n"
    "modules in force. A node of which nothing is mapped becomes 'not-supported', one that can only be\n"
    "read 'config false', an enumeration of which some values are refused a smaller one. What YANG has\n"
    "no statement for stands in the module's description. What would break the model is refused: keys,\n"
    "mandatory nodes, and what a 'when', 'must' or leafref of the rest looks at.\n\n"
    "Examples:\n"
    "  ymap deviations > acme-ethernet-deviations.yang\n"
    "  ymap deviations --name acme-ethernet-deviations --namespace urn:acme:ethernet-deviations\n"
    "  ymap deviations --check acme-ethernet-deviations.yang";

struct deviations_options {
  setup_options setup;
  yfw::deviation_module_names names;
  std::string check;
  bool leave_out = false;
};

constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view digits = "0123456789";

// These tell what is wrong with a value, as CLI11 wants it; nothing: it is in order.
std::string identifier_fault(const std::string &text) {
  const std::string first = std::string(letters) + "_";
  const std::string others = first + std::string(digits) + "-.";
  const bool is_identifier =
      !text.empty() && first.find(text.front()) != first.npos && text.find_first_not_of(others) == text.npos;
  return is_identifier ? "" : yfw::in_quotes(text) + " is not a name of a module: letters, digits, '_', '-' and '.'";
}

std::string uri_fault(const std::string &text) {
  const bool is_uri = text.find(':') != text.npos && text.find_first_of(" \t\n\"<>\\") == text.npos;
  return is_uri ? "" : yfw::in_quotes(text) + " is not a URI, as 'urn:acme:deviations' is one";
}

std::string date_fault(const std::string &text) {
  std::tm date{};
  std::istringstream in(text);
  in >> std::get_time(&date, "%Y-%m-%d");
  // One that the calendar has not becomes another.
  const std::tm read = date;
  const bool is_date = !in.fail() && text.size() == 10 && timegm(&date) != -1 && read.tm_mday == date.tm_mday;
  return is_date ? "" : yfw::in_quotes(text) + " is not a date, as '2024-06-01' is one";
}

// Of the first module that a request may name.
std::string default_name(const yfw::plugin &plugin) {
  for (const yfw::entry_point &entry : plugin.description().entry_points) {
    if (entry.dir == yfw::direction::ox) {
      return entry.module + "-deviations";
    }
  }
  throw yfw::error("the plug-in serves no requests, so that there is nothing to deviate from");
}

// A module with the name or namespace of one that is in force could not be loaded beside it.
void require_new_module(const yfw::deviation_module_names &names, const yfw::schema &modules) {
  if (!names.name.empty() && !modules.ns_of_module(names.name).empty()) {
    throw usage_error("--name: a module " + yfw::in_quotes(names.name) +
                      " is there already, and could not deviate from " + "itself; '" + names.name +
                      "-deviations' would be a name");
  }
  if (const std::string_view module = modules.module_of_ns(names.ns); !module.empty()) {
    throw usage_error("--namespace: " + yfw::in_quotes(names.ns) + " is that of the module '" + std::string(module) +
                      "' already; '" + names.ns + "-deviations' would be one");
  }
}

void require_no_refusal(const yfw::deviations &plan) {
  for (const std::string &refused : plan.refused) {
    std::cerr << "ymap: " << refused << '\n';
  }
  if (!plan.refused.empty()) {
    throw yfw::error("these deviations would break the model; with --leave-out the others are written");
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
    throw yfw::error(yfw::place{file, 0, {}}, "is not what was measured; 'ymap deviations' writes what is");
  }
}

void run(const deviations_options &options) {
  setup with(options.setup);
  require_new_module(options.names, with.schema());
  const yfw::coverage measured = measure(with);
  yfw::deviations plan = plan_deviations(measured, with.schema());
  if (options.leave_out) {
    for (const std::string &refused : plan.refused) {
      plan.remarks.push_back(refused + ", although it is not supported");
    }
  } else {
    require_no_refusal(plan);
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
  CLI::App &command = *app.add_subcommand("deviations", "Write the YANG module that tells what is not supported.");
  command.footer(about_deviations);
  const auto options = std::make_shared<deviations_options>();
  add_setup(command, options->setup);
  CLI::Option *name =
      command.add_option("--name", options->names.name, "of the module (default: that of the served one, -deviations)")
          ->type_name("NAME")
          ->check(identifier_fault);
  CLI::Option *ns = command.add_option("--namespace", options->names.ns, "of the module (default: urn:ymap:NAME)")
                        ->type_name("URI")
                        ->check(uri_fault);
  CLI::Option *revision = command
                              .add_option("--revision", options->names.revision,
                                          "of the module (default: the newest of the modules that it deviates)")
                              ->type_name("DATE")
                              ->check(date_fault);
  command.add_option("--check", options->check, "compare that module with what was measured; fail when it differs")
      ->type_name("FILE")
      ->check(empty_name_fault)
      ->excludes(name)
      ->excludes(ns)
      ->excludes(revision);
  command.add_flag("--leave-out", options->leave_out, "leave out what would break the model, and say so in the module");
  command.callback([options] { run(*options); });
}

}  // namespace ymap
