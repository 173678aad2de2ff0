// The same data as XML and as JSON must give the same answer, both as native data and as a client's.
#include <functional>

#include "fuzz.hpp"
#include "yfw/message.hpp"
#include "yfw/native_request.hpp"
#include "yfw/reply.hpp"
#include "yfw/trace.hpp"

namespace {

using answer = std::function<std::string(yfw::document &)>;

// What comes of a text: the answer, or why there is none. Places differ between formats, so they are left out.
std::string outcome(const std::string &text, const answer &work) {
  try {
    yfw::document read = yfw::document::read(text, fuzz::file, fuzz::modules());
    return work(read);
  } catch (const yfw::error &refused) {
    return "refused: " + refused.where().path + ": " + refused.text();
  }
}

std::string reply_to(yfw::document &native) {
  yfw::trace_log log;
  return fuzz::xml_of(translate_reply(native, fuzz::mapping(), {}, log).data);
}

std::string paths(yfw::document &request, yfw::client_operation operation) {
  yfw::trace_log log;
  std::string text;
  for (const yfw::native_operation &call :
       translate_request(request, read_client_request(request, operation), fuzz::mapping(), log).calls) {
    text += std::to_string(static_cast<int>(call.kind)) + ' ' + call.path() + ' ' + call.value.value_or("-") + ' ' +
            std::to_string(call.operation) + '\n';
  }
  return text;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  std::string xml;
  std::string json;
  const auto refused = fuzz::refusal_of([&] {
    const yfw::data_tree tree =
        fuzz::tree_of(yfw::document::read(fuzz::text_of(data, size), fuzz::file, fuzz::modules()));
    xml = fuzz::xml_of(tree);
    json = fuzz::json_of(tree);
  });
  if (refused) {
    return 0;
  }
  fuzz::require_same("the reply", outcome(xml, reply_to), outcome(json, reply_to));
  for (const yfw::client_operation operation : {yfw::client_operation::get, yfw::client_operation::edit}) {
    const answer ask = [operation](yfw::document &request) { return paths(request, operation); };
    fuzz::require_same("the native paths", outcome(xml, ask), outcome(json, ask));
  }
  return 0;
}
