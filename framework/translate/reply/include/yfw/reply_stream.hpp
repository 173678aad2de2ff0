// Native data of any size translated in chunks of bounded size.
#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "yfw/reply.hpp"

namespace yfw {

// A text that is read from its beginning to its end.
class text_source {
 public:
  virtual ~text_source() = default;

  // Fills the beginning of `room`; returns how many bytes, 0 at the end. Throws `error` when it cannot be read.
  virtual size_t read(std::span<char> room) = 0;

  // Reads on from that byte, counted from the beginning; false when it cannot, as in a pipe.
  virtual bool seek(size_t offset) = 0;
};

using note_taker = std::function<void(const std::vector<note> &notes)>;

struct stream_options {
  reply_options reply;
  std::optional<data_format> to;  // none: as the text
  size_t chunk_bytes = 262'144;   // the least size of a chunk; 0 is as good as 1
  unsigned jobs = 0;              // chunks in work at the same time; 0: as many as there are processors
};

// What `translate_reply` and a writer make of a whole text, with memory for a few chunks only: the text is cut between
// the entries of the native lists that the manifest names, each chunk is translated by itself, and the results are put
// together in order. XML gets a `data` element around it.
//
// Results wait for the last one in a temporary file, so that nothing is written to `out` when the text turns out to be
// bad; so does the text itself when it cannot be read twice. Where entries of the client model come from several places
// of the text, as from two native lists, it is read again, and a chunk is put together from all that tells of its
// entries: that takes some 100 bytes of memory an entry. What cannot be translated in chunks is translated as a whole,
// in memory: data that makes more than one list of the client model, one entry given twice in one list under two
// spellings of its key, and every text while calls are traced or captured.
//
// Notes are handed over before anything is written. Of several faults that of the first chunk that has one is reported.
// Throws `error` as `document::read`, `translate_reply` and the writers do, and when a file fails.
void translate_reply_stream(text_source &native, const std::string &file, const schema &modules, const plugin &mapping,
                            const stream_options &options, trace_log &log, std::ostream &out,
                            const note_taker &take_notes);

}  // namespace yfw
