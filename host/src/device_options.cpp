#include "device_options.hpp"

#include <sstream>

#include "commands.hpp"
#include "input.hpp"
#include "yfw/message.hpp"

namespace ymap {

void add_device_options(CLI::App &command, device_options &options, const std::string &to_help) {
  command
      .add_option("--device", options.device, "the device: a file of native data, configuration and operational state")
      ->required()
      ->type_name("FILE")
      ->check(empty_name_error);
  add_setup(command, options.setup);
  add_choice<yfw::data_format>(command, "--to", to_help,
                               {{"xml", yfw::data_format::xml}, {"json", yfw::data_format::json}},
                               [&options](yfw::data_format format) { options.to = format; });
}

void work_on_device(const device_options &options, const std::function<void(setup &)> &work) {
  setup with(options.setup);
  try {
    work(with);
  } catch (const output_error &) {
    throw;
  } catch (const yfw::error &fault) {
    if (!options.to) {
      throw;
    }
    std::ostringstream text;
    write_error_reply(text, fault, with.schema(), with.plugin().description(), *options.to);
    write_result(text.str());
    throw failure_reported();
  }
}

yfw::document read_request(const std::string &file, const yfw::schema &modules) {
  const std::string text = read_text(file);
  try {
    return yfw::document::read(text, display_name(file), modules);
  } catch (const yfw::error &fault) {
    throw yfw::client_error(fault.where(), fault.text(), yfw::error_tag::malformed_message);
  }
}

}  // namespace ymap
