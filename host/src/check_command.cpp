#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "commands.hpp"
#include "input.hpp"
#include "terminal.hpp"
#include "yfw/plugin_check.hpp"

namespace ymap {
namespace {

constexpr const char *about_check =
    "Reads the library without loading it: nothing in it runs. Looks for names that nobody\n"
    "defines, for functions by hand that no walker calls (a typing error in such a name means\n"
    "that the generated function runs instead), for entry points that the manifest misses, and\n"
    "for data that outlives a call.\n\n"
    "Examples:\n"
    "  ymap check build/lib/ymap/libymap_oc_ethernet.so\n"
    "  ymap check --format json libymap_oc_ethernet.so | jq '.findings[] | select(.level != \"ok\")'\n\n"
    "Exit code 0: no errors, perhaps warnings; 1: errors.";

struct check_options {
  std::string library;
  bool as_json = false;
};

const char *word(yfw::finding_level level) {
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

const char *word(yfw::direction dir) {
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
  return "  " + std::string(word(model.dir)) + ' ' + model.module + " of " + model.plugin + ": " +
         std::to_string(model.generated) + " generated, " +
         std::to_string(model.overrides.size() + model.by_hand.size()) + " by hand, " + std::to_string(model.unmapped) +
         " unmapped\n" + list_text("entry   ", model.entry_points) + list_text("by hand ", model.by_hand) +
         list_text("replaces", model.overrides) + list_text("uncalled", model.uncalled);
}

std::string finding_text(const yfw::finding &each) {
  const std::string name = each.name.empty() ? "" : each.name + ": ";
  return painted(stream::out, colour_of(each.level), padded(word(each.level), 8)) + ' ' + padded(each.about, 10) + ' ' +
         name + each.text + '\n';
}

std::string as_text(const yfw::plugin_report &report) {
  std::string text = report.file + ": a library for " + report.machine + '\n';
  for (const yfw::checked_model &model : report.models) {
    text += model_text(model);
  }
  text += report.models.empty() ? "" : list_text("helper  ", report.helpers);
  for (const yfw::finding &each : report.findings) {
    text += finding_text(each);
  }
  return text + counted(report.count(yfw::finding_level::error), "error") + ", " +
         counted(report.count(yfw::finding_level::warning), "warning") + '\n';
}

using json_writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

void write_text(json_writer &out, const char *name, const std::string &value) {
  out.Key(name);
  out.String(value.c_str());
}

void write_texts(json_writer &out, const char *name, const std::vector<std::string> &values) {
  out.Key(name);
  out.StartArray();
  for (const std::string &value : values) {
    out.String(value.c_str());
  }
  out.EndArray();
}

void write_model(json_writer &out, const yfw::checked_model &model) {
  out.StartObject();
  write_text(out, "direction", word(model.dir));
  write_text(out, "plug-in", model.plugin);
  write_text(out, "module", model.module);
  out.Key("generated");
  out.Uint(model.generated);
  out.Key("unmapped");
  out.Uint(model.unmapped);
  write_texts(out, "entry-points", model.entry_points);
  write_texts(out, "by-hand", model.by_hand);
  write_texts(out, "overrides", model.overrides);
  write_texts(out, "uncalled", model.uncalled);
  out.EndObject();
}

void write_finding(json_writer &out, const yfw::finding &each) {
  out.StartObject();
  write_text(out, "level", word(each.level));
  write_text(out, "about", each.about);
  write_text(out, "name", each.name);
  write_text(out, "text", each.text);
  out.EndObject();
}

std::string as_json(const yfw::plugin_report &report) {
  rapidjson::StringBuffer buffer;
  json_writer out(buffer);
  out.SetIndent(' ', 2);
  out.StartObject();
  write_text(out, "file", report.file);
  write_text(out, "machine", report.machine);
  out.Key("abi-version");
  report.abi_version ? out.String(report.abi_version->c_str()) : out.Null();
  out.Key("models");
  out.StartArray();
  for (const yfw::checked_model &model : report.models) {
    write_model(out, model);
  }
  out.EndArray();
  write_texts(out, "helpers", report.helpers);
  out.Key("undefined");
  out.StartObject();
  write_texts(out, "framework", report.framework);
  write_texts(out, "c-library", report.c_library);
  write_texts(out, "elsewhere", report.elsewhere);
  out.EndObject();
  out.Key("findings");
  out.StartArray();
  for (const yfw::finding &each : report.findings) {
    write_finding(out, each);
  }
  out.EndArray();
  out.EndObject();
  return std::string(buffer.GetString()) + '\n';
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
  CLI::App &command = *app.add_subcommand("check", "Check a plug-in's library before anything in it is called.");
  command.footer(about_check);
  const auto options = std::make_shared<check_options>();
  command.add_option("PLUGIN", options->library, "the plug-in's shared library")->required();
  add_choice<bool>(command, "--format", "how the result is told (default: text)", {{"text", false}, {"json", true}},
                   [options](bool json) { options->as_json = json; });
  command.callback([options] { run(*options); });
}

}  // namespace ymap
