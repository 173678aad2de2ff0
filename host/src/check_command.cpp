#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "commands.hpp"
#include "input.hpp"
#include "json_report.hpp"
#include "terminal.hpp"
#include "yfw/plugin_check.hpp"

namespace ymap {
namespace {

constexpr const char *check_help =
    "Examples:\n"
    "  ymap check build/lib/ymap/libymap_oc_ethernet.so\n"
    "  ymap check --format json libymap_oc_ethernet.so | jq '.findings[] | select(.level != \"ok\")'\n\n"
    "Reads the library without loading it: nothing in it runs. Reports undefined names, custom\n"
    "functions that no walker calls (after a typing error in such a name the generated function\n"
    "runs instead), entry points that the manifest does not name, and data that outlives a call.\n\n"
    "Exit code 0: no errors, perhaps warnings; 1: errors.";

struct check_options {
  std::string library;
  bool as_json = false;
};

const char *to_string(yfw::finding_level level) {
  switch (level) {
    case yfw::finding_level::ok:
      return "ok";
    case yfw::finding_level::warning:
      return "warning";
    case yfw::finding_level::error:
      break;
  }
  return "error";
}

colour colour_of(yfw::finding_level level) {
  switch (level) {
    case yfw::finding_level::ok:
      return colour::green;
    case yfw::finding_level::warning:
      return colour::yellow;
    case yfw::finding_level::error:
      break;
  }
  return colour::red;
}

const char *to_string(yfw::direction dir) {
  return dir == yfw::direction::ox ? "ox" : "xo";
}

std::string padded(std::string text, size_t width) {
  text.resize(std::max(width, text.size()), ' ');
  return text;
}

std::string counted(size_t count, const std::string &what) {
  return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

std::string list_text(const char *title, const std::vector<std::string> &names) {
  std::string text;
  for (const std::string &name : names) {
    text += std::string("    ") + title + ' ' + name + '\n';
  }
  return text;
}

std::string model_text(const yfw::checked_model &model) {
  return "  " + std::string(to_string(model.dir)) + ' ' + model.module + " of " + model.plugin + ": " +
         std::to_string(model.generated) + " generated, " +
         std::to_string(model.overrides.size() + model.custom.size()) + " custom, " + std::to_string(model.unmapped) +
         " unmapped\n" + list_text("entry point", model.entry_points) + list_text("custom     ", model.custom) +
         list_text("override   ", model.overrides) + list_text("unreachable", model.unreachable);
}

std::string finding_text(const yfw::finding &each) {
  const std::string name = each.name.empty() ? "" : each.name + ": ";
  return painted(stream::out, colour_of(each.level), padded(to_string(each.level), 8)) + ' ' + padded(each.check, 10) +
         ' ' + name + each.message + '\n';
}

std::string as_text(const yfw::plugin_report &report) {
  std::string text = report.file + ": library for " + report.machine + '\n';
  for (const yfw::checked_model &model : report.models) {
    text += model_text(model);
  }
  text += report.models.empty() ? "" : list_text("helper     ", report.helpers);
  for (const yfw::finding &each : report.findings) {
    text += finding_text(each);
  }
  return text + counted(report.count(yfw::finding_level::error), "error") + ", " +
         counted(report.count(yfw::finding_level::warning), "warning") + '\n';
}

void add_model(json_report &out, const yfw::checked_model &model) {
  out.text("direction", to_string(model.dir));
  out.text("plug-in", model.plugin);
  out.text("module", model.module);
  out.number("generated", model.generated);
  out.number("unmapped", model.unmapped);
  out.texts("entry-points", model.entry_points);
  out.texts("custom", model.custom);
  out.texts("overrides", model.overrides);
  out.texts("unreachable", model.unreachable);
}

std::string as_json(const yfw::plugin_report &report) {
  return json_report::with([&](json_report &out) {
    out.text("file", report.file);
    out.text("machine", report.machine);
    out.text("abi-version", report.abi_version);
    out.list("models", report.models, [&](const yfw::checked_model &model) { add_model(out, model); });
    out.texts("helpers", report.helpers);
    out.object("undefined", [&] {
      out.texts("framework", report.framework);
      out.texts("c-library", report.c_library);
      out.texts("elsewhere", report.elsewhere);
    });
    out.list("findings", report.findings, [&](const yfw::finding &each) {
      out.text("level", to_string(each.level));
      out.text("check", each.check);
      out.text_if_any("name", each.name);
      out.text("message", each.message);
    });
  });
}

void run(const check_options &options) {
  const yfw::plugin_report report = yfw::check_plugin(options.library);
  write_result(options.as_json ? as_json(report) : as_text(report));
  if (report.count(yfw::finding_level::error) != 0) {
    throw failure_reported();
  }
}

}  // namespace

void add_check(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("check", "Check a plug-in's library without loading it.");
  command.footer(check_help);
  const auto options = std::make_shared<check_options>();
  command.add_option("PLUGIN", options->library, "the plug-in's shared library")->required()->check(empty_name_error);
  add_format(command, options->as_json);
  command.callback([options] { run(*options); });
}

}  // namespace ymap
