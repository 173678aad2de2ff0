// A native reply, read and translated whole and in part, and what comes of it written.
#include "yfw/reply.hpp"
#include "fuzz.hpp"
#include "yfw/trace.hpp"

namespace {

void translate(yfw::document &native, const yfw::reply_options &options) {
  yfw::trace_log log(nullptr, true, 16);
  const yfw::reply answer = translate_reply(native, fuzz::mapping(), options, log);
  fuzz::require_read_back(answer.data);
  for (const yfw::note &each : answer.notes) {
    fuzz::require_printable(to_string(each));
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  (void)fuzz::refusal_of([&] {
    yfw::document native = fuzz::read_document(fuzz::text_of(data, size), YMAP_FUZZ_FORMAT);
    for (const yfw::content wanted : {yfw::content::all, yfw::content::config, yfw::content::nonconfig}) {
      (void)fuzz::refusal_of([&] { translate(native, {wanted, {}}); });
    }
    (void)fuzz::refusal_of([&] { translate(native, {yfw::content::all, {"Eth0"}}); });
  });
  return 0;
}
