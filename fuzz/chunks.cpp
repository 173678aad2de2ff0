// A reply translated in chunks must give what it gives as a whole: data and notes, or a refusal. The first byte says
// how large chunks are.
#include <algorithm>
#include <cstring>
#include <set>
#include <sstream>

#include "fuzz.hpp"
#include "yfw/reply_stream.hpp"
#include "yfw/trace.hpp"
#include "yfw/writer.hpp"

namespace {

class text_in_memory : public yfw::text_source {
 public:
  explicit text_in_memory(std::string_view text) : text_(text) {}

  size_t read(std::span<char> room) override {
    const size_t count = std::min(room.size(), text_.size() - at_);
    std::memcpy(room.data(), text_.data() + at_, count);
    at_ += count;
    return count;
  }
  bool seek(size_t offset) override {
    at_ = std::min(offset, text_.size());
    return true;
  }

 private:
  std::string_view text_;
  size_t at_ = 0;
};

// Notes come in the order of the chunks, and one that is said twice of one path may be said once.
std::string told(const std::string &output, const std::vector<yfw::note> &notes) {
  std::string text = output;
  std::set<std::string> lines;
  for (const yfw::note &each : notes) {
    lines.insert(to_string(each));
  }
  for (const std::string &line : lines) {
    text += "note: " + line + '\n';
  }
  return text;
}

// Of a text with several faults another one may be found first.
std::string refused(const yfw::error &fault) {
  fuzz::require_printable(fault.what());
  return "refused";
}

std::string as_whole(const std::string &text) {
  try {
    yfw::document native = yfw::document::read(text, fuzz::file, fuzz::modules());
    yfw::trace_log log;
    const yfw::reply answer = translate_reply(native, fuzz::mapping(), {}, log);
    return told(native.format() == yfw::data_format::xml ? fuzz::xml_of(answer.data) : fuzz::json_of(answer.data),
                answer.notes);
  } catch (const yfw::error &fault) {
    return refused(fault);
  }
}

std::string in_chunks(const std::string &text, const yfw::stream_options &options) {
  try {
    text_in_memory source(text);
    std::ostringstream output;
    yfw::trace_log log;
    std::vector<yfw::note> notes;
    translate_reply_stream(source, fuzz::file, fuzz::modules(), fuzz::mapping(), options, log, output,
                           [&](const std::vector<yfw::note> &taken) { notes = taken; });
    return told(output.str(), notes);
  } catch (const yfw::error &fault) {
    return refused(fault);
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size == 0) {
    return 0;
  }
  const std::string text = fuzz::text_of(data + 1, size - 1);
  const std::string expected = as_whole(text);
  yfw::stream_options options;
  options.chunk_bytes = data[0];
  for (options.jobs = 1; options.jobs <= 2; ++options.jobs) {
    fuzz::require_same("the reply in chunks", expected, in_chunks(text, options));
  }
  return 0;
}
