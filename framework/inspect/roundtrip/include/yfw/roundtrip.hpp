// Properties of a mapping that is used in one direction and back, checked on a device in memory with data trees of one
// leaf.
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

// The round-trip properties of docs/accepted-differences.md.
enum class property { set_get, delete_get, absent_get, native_stable, read_answered };

inline constexpr property all_properties[] = {property::set_get, property::delete_get, property::absent_get,
                                              property::native_stable, property::read_answered};

// "set-get"
std::string_view to_string(property which);

// A leaf and value for which a property does not hold.
struct roundtrip_difference {
  property which;
  std::string path;                  // schema path with plain names
  std::optional<std::string> value;  // none when the property is one of the leaf and not of a value
  std::string what;                  // what happens instead
  std::string tree;                  // the smallest data that shows it (RFC 7951), of the client or the native model
};

struct property_count {
  size_t tried = 0;     // data trees that the property was checked with
  size_t rejected = 0;  // those of them that are rejected with an error, which is not a difference
};

// Values of operational state, which is only reported.
struct state_counts {
  size_t tried = 0;
  size_t reported = 0;  // change what a client reads
  size_t omitted = 0;   // are omitted from the reply with a warning, or the reply is rejected
  size_t ignored = 0;   // have no effect and no warning
};

struct roundtrip {
  std::vector<roundtrip_difference> differences;
  std::vector<property_count> counts;  // by property
  state_counts state;
  std::vector<std::string> not_tried;  // leaves for which no data tree could be built, and why
};

// Checks all leaves that the entry points serve, with every enumeration value, identity and boolean, both ends of
// ranges, and several strings that match lengths and patterns.
roundtrip check_roundtrip(const schema &modules, const plugin &mapping, trace_log &log,
                          const progress_report &report = {});

// A difference that was reviewed and is accepted.
struct accepted_difference {
  property which;
  std::string path;
  std::string value;  // "*": any value or none
  std::string reason;
  unsigned line;  // in the file

  bool covers(const roundtrip_difference &found) const;
};

// Reads a file of accepted differences. `file` is for messages. Throws `error`, with the line number, for an invalid
// line.
std::vector<accepted_difference> read_accepted_differences(std::string_view text, const std::string &file);

}  // namespace yfw
