#include "yfw/trace.hpp"

#include <ostream>

namespace yfw {

trace_log::trace_log(std::ostream *short_form, bool keep_ring, size_t ring_lines)
    : short_form_(short_form), keep_ring_(keep_ring), ring_lines_(ring_lines) {}

void trace_log::write_short(const std::string &line) {
  if (short_form_ != nullptr) {
    *short_form_ << line << '\n';
  }
}

void trace_log::write_long(const char *line) {
  if (!keep_ring_) {
    return;
  }
  if (ring_.size() == ring_lines_) {
    ring_.pop_front();
    ++lost_lines_;
  }
  ring_.emplace_back(line);
}

void trace_log::print_ring(std::ostream &stream) const {
  if (lost_lines_ != 0) {
    stream << "(" << lost_lines_ << " older lines lost)\n";
  }
  for (const std::string &line : ring_) {
    stream << line << '\n';
  }
}

}  // namespace yfw
