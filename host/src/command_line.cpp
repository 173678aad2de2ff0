#include "command_line.hpp"

#include <CLI/CLI.hpp>
#include <functional>
#include <iostream>
#include <map>

#include "yfw.h"

namespace ymap {
namespace {

constexpr const char *about =
    "ymap runs a YANG model mapping: it turns a client's OpenConfig request into what\n"
    "the device is asked to set, delete or read, and native data into OpenConfig data.\n"
    "A mapping is a plug-in, a shared library with a manifest beside it.";

constexpr const char *about_exit_codes = "Exit codes: 0 done, 1 input refused or work failed, 2 wrong command line.";

constexpr const char *about_request =
    "Turn a client's request into native paths.\n\n"
    "FILE is XML or RFC 7951 JSON, '-' for standard input: a NETCONF <rpc> with <get>,\n"
    "<get-config> (subtree filter) or <edit-config>, or a bare data tree with --operation.";

constexpr const char *request_examples =
    "Examples:\n"
    "  ymap request examples/set-port-speed.xml\n"
    "  ymap request --to paths --operation get examples/get-counters.json\n"
    "  ymap request --trace --to paths examples/get-ethernet.xml";

constexpr const char *about_reply =
    "Turn native data into OpenConfig data.\n\n"
    "FILE is XML or RFC 7951 JSON, '-' for standard input: operational data, configuration,\n"
    "or both in one document, with or without <rpc-reply> and <data> around.";

constexpr const char *reply_examples =
    "Examples:\n"
    "  ymap reply examples/reply.xml\n"
    "  ymap reply --content nonconfig --interface GigabitEthernet0/0/0/1 --to json examples/reply.xml";

void add_common(CLI::App &command, common_options &common) {
  command.add_option("FILE", common.file, "what to translate, '-' for standard input")->required();
  command.add_option("--plugin", common.plugin, "the mapping's shared library instead of the built or installed one")
      ->type_name("PATH");
  command.add_option("--yang", common.yang, "directory of YANG modules instead of the shipped ones; repeatable")
      ->type_name("DIR")
      ->allow_extra_args(false);
  command.add_flag("--trace", common.trace, "print the mapping's short-form trace lines to standard error");
  command.add_flag("--ring", common.ring, "print its long-form lines, with function and line, to standard error");
}

// An option whose value is one of a few words.
template <typename value_t>
void add_choice(CLI::App &command, const std::string &name, const std::string &help,
                const std::map<std::string, value_t> &words, std::function<void(value_t)> choose) {
  command.add_option_function<std::string>(
             name, [words, choose](const std::string &word) { choose(words.at(word)); }, help)
      ->check(CLI::IsMember(words));
}

void add_request(CLI::App &app, request_command &request) {
  CLI::App &command = *app.add_subcommand("request", about_request);
  command.footer(request_examples);
  add_common(command, request.common);
  add_choice<yfw::client_operation>(command, "--operation", "what a bare data tree asks for",
                                    {{"get", yfw::client_operation::get},
                                     {"get-config", yfw::client_operation::get_config},
                                     {"edit", yfw::client_operation::edit}},
                                    [&](yfw::client_operation operation) { request.operation = operation; });
  add_choice<output_format>(command, "--to", "subtree filter or edit-config as XML (default) or JSON, or a line a path",
                            {{"xml", output_format::xml}, {"json", output_format::json}, {"paths", output_format::paths}},
                            [&](output_format format) { request.to = format; });
  command.callback([&request] { run(request); });
}

void add_reply(CLI::App &app, reply_command &reply) {
  CLI::App &command = *app.add_subcommand("reply", about_reply);
  command.footer(reply_examples);
  add_common(command, reply.common);
  add_choice<output_format>(command, "--to", "format of the result (default: that of the input)",
                            {{"xml", output_format::xml}, {"json", output_format::json}},
                            [&](output_format format) { reply.to = format; });
  add_choice<yfw::content>(command, "--content", "which leaves (RFC 8040, section 4.8.1; default: all)",
                           {{"all", yfw::content::all},
                            {"config", yfw::content::config},
                            {"nonconfig", yfw::content::nonconfig}},
                           [&](yfw::content content) { reply.options.wanted = content; });
  command.add_option("--interface", reply.options.entries, "only this interface; repeatable")
      ->type_name("NAME")
      ->allow_extra_args(false);
  command.callback([&reply] { run(reply); });
}

}  // namespace

int run_command_line(int argc, char **argv) {
  CLI::App app(about, "ymap");
  app.footer(about_exit_codes);
  app.set_version_flag("--version", "ymap " YMAP_VERSION " (ABI " + std::to_string(YFW_ABI_VERSION) + ")");
  app.require_subcommand(1);
  app.get_formatter()->column_width(24);
  request_command request;
  reply_command reply;
  add_request(app, request);
  add_reply(app, reply);
  try {
    app.parse(argc, argv);
    return 0;
  } catch (const CLI::ParseError &parse) {
    return app.exit(parse, std::cout, std::cerr) == 0 ? 0 : 2;
  } catch (const usage_error &usage) {
    std::cerr << "ymap: " << usage.what() << '\n';
    return 2;
  } catch (const std::exception &failure) {
    std::cerr << "ymap: " << failure.what() << '\n';
    return 1;
  }
}

}  // namespace ymap
