#include <iostream>
#include <memory>

#include "commands.hpp"
#include "input.hpp"
#include "setup.hpp"
#include "terminal.hpp"
#include "yfw/reply_stream.hpp"

namespace ymap {
namespace {

constexpr const char *reply_help =
    "Examples:\n"
    "  ymap reply --to json examples/reply.xml\n"
    "  ymap reply --content nonconfig --entry GigabitEthernet0/0/0/1 examples/reply.xml\n\n"
    "FILE is XML or RFC 7951 JSON: operational data, configuration, or both in one document, with or\n"
    "without an <rpc-reply> and <data> element.";

struct reply_command_options {
  std::string file;
  setup_options setup;
  yfw::stream_options stream;
};

void run(const reply_command_options &options) {
  setup with(options.setup);
  progress shown("translating, megabytes");
  text_file native(options.file, [&](size_t done, size_t total) { shown(done >> 20U, total >> 20U); });
  translate_reply_stream(native, display_name(options.file), with.schema(), with.plugin(), options.stream, with.trace(),
                         std::cout, [&](const std::vector<yfw::note> &notes) {
                           shown.hide();
                           write_notes(notes);
                         });
  write_result("");
}

}  // namespace

void add_reply(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("reply", "Translate native data into data of the client model.");
  command.footer(reply_help);
  const auto options = std::make_shared<reply_command_options>();
  command.add_option("FILE", options->file, "the native data, '-' for standard input")
      ->required()
      ->check(empty_name_error);
  add_setup(command, options->setup);
  add_choice<yfw::data_format>(command, "--to", "format of the result (default: that of the input)",
                               {{"xml", yfw::data_format::xml}, {"json", yfw::data_format::json}},
                               [options](yfw::data_format format) { options->stream.to = format; });
  add_choice<yfw::content>(
      command, "--content", "all leaves (default), configuration or operational state (RFC 8040, section 4.8.1)",
      {{"all", yfw::content::all}, {"config", yfw::content::config}, {"nonconfig", yfw::content::nonconfig}},
      [options](yfw::content content) { options->stream.reply.wanted = content; });
  command.add_option("--entry", options->stream.reply.entries, "only the list entry with this key; repeatable")
      ->type_name("KEY")
      ->check(empty_name_error)
      ->allow_extra_args(false);
  command
      .add_option("-j,--jobs", options->stream.jobs,
                  "threads that translate a large reply (default: one per processor)")
      ->type_name("N")
      ->check(CLI::Range(1, 1024));
  command.callback([options] { run(*options); });
}

}  // namespace ymap
