#include "writers.hpp"

namespace ymapgen {

std::string parser_text(const model &source) {
  const bool is_reply = source.direction == direction::xo;
  emitter out = begin_file(source);
  write_includes(out, source, {});
  for (const node &top : source.tops) {
    if (is_reply) {
      write_reply_walkers(out, source, top);
    } else {
      write_request_walkers(out, source, top);
    }
  }
  if (source.augmented.empty()) {
    return out.text();
  }
  if (is_reply) {
    write_reply_entry(out, source);
  } else {
    write_request_entry(out, source);
  }
  return out.text();
}

}  // namespace ymapgen
