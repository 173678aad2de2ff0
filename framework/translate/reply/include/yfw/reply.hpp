// Native data translated into data of the high model.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "yfw/content.hpp"
#include "yfw/data_tree.hpp"
#include "yfw/document.hpp"
#include "yfw/note.hpp"
#include "yfw/plugin.hpp"
#include "yfw/trace.hpp"

namespace yfw {

struct reply_options {
  content wanted = content::all;
  std::vector<std::string> entries = {};  // keys of the list entries that are wanted; empty: all
  bool checks_values = true;              // makes values canonical, and notes those that the client's model lacks
};

struct reply {
  data_tree data;
  std::vector<note> notes;  // what is left out and why
};

// Lets the plug-in translate native data, with or without `rpc-reply` and `data` around. The data of a value that has
// no counterpart is left out with a note; a value that the client's model does not take is passed on, with a note on
// the first one of its leaf. Throws `error`, with the place in the document, for top-level data that the modules do not
// have, for a list entry without its key, for an rpc-error and for whatever the plug-in refuses.
reply translate_reply(document &native, const plugin &mapping, const reply_options &options, trace_log &log);

}  // namespace yfw
