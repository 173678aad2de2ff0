// Where trace and error points go: the short form to a stream as it comes, the long form to a ring in memory.
#pragma once

#include <cstdint>
#include <deque>
#include <iosfwd>
#include <string>

namespace yfw {

class trace_log {
 public:
  // `short_form` receives the short-form lines of trace and error points; null drops them. With `keep_ring` the last
  // `ring_lines` long-form lines are kept. The stream must outlive the log.
  explicit trace_log(std::ostream *short_form = nullptr, bool keep_ring = false, size_t ring_lines = 65536);

  bool wants_short_form() const {
    return short_form_ != nullptr;
  }
  bool wants_long_form() const {
    return keep_ring_;
  }

  void write_short(const std::string &line);
  void write_long(const char *line);

  // Writes the ring to `stream`, oldest line first, after a line with the number of older ones that were lost, if any.
  void print_ring(std::ostream &stream) const;

 private:
  std::ostream *short_form_;
  bool keep_ring_;
  size_t ring_lines_;
  std::deque<std::string> ring_;
  uint64_t lost_lines_ = 0;
};

}  // namespace yfw
