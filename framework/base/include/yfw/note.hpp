// What a translation reports beside its result: a record, of which programs print one line.
#pragma once

#include <string>

#include "yfw/error.hpp"

namespace yfw {

enum class note_kind {
  unmapped,        // the node has no native counterpart, so nothing is read or reported for it
  no_effect,       // the node causes no native edit
  not_translated,  // the node is skipped with all that is below it, since one of its nodes has an error
  key_read,        // a key that is asked for, which reads of the rest of its entry bring
  content_match,   // a value that selects (RFC 6241, section 6.2.5), which the native request does not carry
  omitted_value,   // a native value without counterpart in the client model: its leaf is omitted
  invalid_value,   // a native value that is reported although the client model does not allow it
  unknown_node,    // native data that the modules do not have
  missing_entry,   // a list entry that is asked for and that the data does not have
  datastore,       // another datastore is used than the one that is named
  error_option,    // an edit is done whole or not at all, whatever its error-option says
};

struct note {
  place where;
  note_kind kind;
  std::string text;        // without the place
  std::string value = {};  // the value that is omitted or invalid, or the parameter's; or empty

  bool operator==(const note &) const = default;
};

// The one line of a note: the `message_line` of its place and text.
std::string to_string(const note &which);

}  // namespace yfw
