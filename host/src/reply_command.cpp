#include <sstream>

#include "command_line.hpp"
#include "input.hpp"
#include "setup.hpp"
#include "yfw/node.hpp"
#include "yfw/writer.hpp"

namespace ymap {

void run(const reply_command &command) {
  setup with(command.common);
  yfw::document document = yfw::document::read(read_text(command.common.file), display_name(command.common.file),
                                               with.schema());
  const yfw::reply reply = translate_reply(document, with.plugin(), command.options, with.trace());
  const bool as_json = command.to ? *command.to == output_format::json : document.format() == yfw::data_format::json;
  std::ostringstream text;
  if (as_json) {
    write_json(text, reply.data);
  } else {
    write_xml(text, reply.data, {.wrappers = {{"data", yfw::netconf_ns}}});
  }
  write_notes(reply.notes);
  write_result(text.str());
}

}  // namespace ymap
