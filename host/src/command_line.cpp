#include "command_line.hpp"

#include <iostream>
#include <new>

#include "commands.hpp"
#include "yfw.h"

namespace ymap {
namespace {

constexpr const char *about =
    "ymap runs a YANG model mapping: it turns a client's OpenConfig request into what\n"
    "the device is asked to set, delete or read, and native data into OpenConfig data.\n"
    "A mapping is a plug-in, a shared library with a manifest beside it.";

constexpr const char *about_exit_codes = "Exit codes: 0 done, 1 input refused or work failed, 2 wrong command line.";

}  // namespace

int run_command_line(int argc, char **argv) {
  CLI::App app(about, "ymap");
  app.footer(about_exit_codes);
  app.set_version_flag("--version", "ymap " YMAP_VERSION " (ABI " + std::to_string(YFW_ABI_VERSION) + ")");
  app.require_subcommand(1);
  app.get_formatter()->column_width(24);
  app.failure_message([](const CLI::App *, const CLI::Error &failure) {
    return "ymap: " + std::string(failure.what()) + "; 'ymap --help' and 'ymap COMMAND --help' tell more\n";
  });
  add_request(app);
  add_reply(app);
  add_get(app);
  add_set(app);
  add_delete(app);
  add_edit(app);
  add_plan(app);
  add_explain(app);
  add_roundtrip(app);
  add_coverage(app);
  add_deviations(app);
  add_record(app);
  add_replay(app);
  add_check(app);
  try {
    app.parse(argc, argv);
    return 0;
  } catch (const CLI::ParseError &parse) {
    return app.exit(parse, std::cout, std::cerr) == 0 ? 0 : 2;
  } catch (const usage_error &usage) {
    std::cerr << "ymap: " << usage.what() << '\n';
    return 2;
  } catch (const failure_reported &) {
    return 1;
  } catch (const std::bad_alloc &) {
    std::cerr << "ymap: out of memory\n";
    return 1;
  } catch (const std::exception &failure) {
    std::cerr << "ymap: " << failure.what() << '\n';
    return 1;
  }
}

}  // namespace ymap
