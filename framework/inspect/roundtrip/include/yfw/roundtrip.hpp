// Laws that a mapping keeps when it is used there and back, checked on an embedded device with trees of one leaf.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/plugin.hpp"
#include "yfw/progress.hpp"
#include "yfw/schema.hpp"
#include "yfw/trace.hpp"

namespace yfw {

// See docs/known-losses.md.
enum class law { set_get, delete_get, absent_get, native_stable, read_answered };

inline constexpr law all_laws[] = {law::set_get, law::delete_get, law::absent_get, law::native_stable,
                                   law::read_answered};

// "set-get"
std::string_view to_string(law which);

// A law that does not hold for a leaf with a value.
struct broken_law {
  law which;
  std::string path;                  // of the schema node, with plain names
  std::optional<std::string> value;  // none where the law is of the leaf and not of a value
  std::string what;                  // what happens instead
  std::string tree;                  // the smallest data that shows it (RFC 7951), of the client's or the native model
};

struct law_count {
  size_t tried = 0;    // trees that the law was checked with
  size_t refused = 0;  // of these, such as are refused with an error: no loss, since somebody is told
};

// What becomes of operational state, which goes one way: of the values that were tried, how many tell a client
// something, are left out of the reply with a note, and are passed over without one.
struct state_count {
  size_t tried = 0;
  size_t reported = 0;
  size_t left_out = 0;
  size_t passed_over = 0;
};

struct roundtrip {
  std::vector<broken_law> broken;
  std::vector<law_count> counts;  // by law
  state_count state;
  std::vector<std::string> not_tried;  // leaves for which no tree could be made, and why
};

// Checks all leaves that the entry points serve, with every enumeration value, identity and boolean, both ends of
// ranges, and several texts that fit lengths and patterns.
roundtrip check_roundtrip(const schema &modules, const plugin &mapping, trace_log &log,
                          const progress_report &report = {});

// A loss that was reviewed and is accepted.
struct known_loss {
  law which;
  std::string path;
  std::string value;  // "*": any value or none
  std::string reason;
  unsigned line;  // in the file

  bool covers(const broken_law &loss) const;
};

// Reads a file of known losses. `file` is for messages. Throws `error`, with its line, for a line that is none.
std::vector<known_loss> read_known_losses(std::string_view text, const std::string &file);

}  // namespace yfw
