// Native data translated into data of the client model.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "yfw/content.hpp"
#include "yfw/data_tree.hpp"
#include "yfw/document.hpp"
#include "yfw/note.hpp"

namespace yfw {

class plugin;
class trace_log;

struct reply_options {
  content wanted = content::all;
  std::vector<std::string> entries = {};  // keys of the wanted list entries; empty: all
  bool checks_values = true;              // makes values canonical, with a note on invalid ones
};

struct reply {
  data_tree data;
  std::vector<note> notes;  // omitted nodes and invalid values
};

// Translates native data, with or without `rpc-reply` and `data` around. A leaf with an unmapped value is omitted with
// a note; a value that the client model does not allow is kept, with a note on the first one of its leaf. Throws
// `error`, with the place in the document, for top-level data that the modules do not have, for a list entry without
// its key, for an rpc-error and for what the plug-in rejects.
reply translate_reply(document &native, const plugin &mapping, const reply_options &options, trace_log &log);

}  // namespace yfw
