// A client's request, read and translated in each way in which it could be meant, and what comes of it written.
#include "fuzz.hpp"
#include "yfw/message.hpp"
#include "yfw/native_request.hpp"
#include "yfw/plan.hpp"
#include "yfw/trace.hpp"

namespace {

using yfw::client_operation;

void translate(yfw::document &request, client_operation operation) {
  yfw::trace_log log(nullptr, true, 16);
  const yfw::native_request native =
      translate_request(request, read_client_request(request, operation), fuzz::mapping(), log);
  fuzz::require_read_back(native_tree(native, fuzz::modules()));
}

void plan(yfw::document &request) {
  yfw::trace_log log;
  const yfw::edit_plan planned =
      plan_request(request, read_client_request(request, client_operation::edit), fuzz::mapping(), log);
  for (const yfw::client_error &problem : planned.problems) {
    fuzz::require_printable(problem.what());
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  (void)fuzz::refusal_of([&] {
    yfw::document request = fuzz::read_document(fuzz::text_of(data, size), YMAP_FUZZ_FORMAT);
    for (const client_operation operation :
         {client_operation::get, client_operation::get_config, client_operation::edit}) {
      (void)fuzz::refusal_of([&] { translate(request, operation); });
    }
    (void)fuzz::refusal_of([&] { plan(request); });
  });
  return 0;
}
