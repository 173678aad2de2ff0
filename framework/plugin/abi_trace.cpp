// The calls of the ABI that trace.
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "yfw/internal/context.hpp"

using yfw::context;

namespace {

std::string formatted(const char *format, va_list arguments) {
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  return text;
}

// What follows the context in a line: the point's own text.
std::string text_of_point(const std::string &line) {
  const size_t context_at = line.find("ctx=");
  const size_t comma = line.find(',', context_at == std::string::npos ? 0 : context_at);
  return comma == std::string::npos ? line : line.substr(comma + 1);
}

}  // namespace

// Error points are always enabled: they give the cause of a failed request.
int32_t yfw_debug_should_log(yfw_debug_ctx_t *debug_ctx, int32_t level) {
  return level == 0 ? 1 : debug_ctx->framework_0[0];
}

void _kel_dt_log_filter_adv(void *handle, int32_t /*zero1*/, int32_t /*zero2*/, int32_t /*zero3*/, int32_t /*zero4*/,
                            int32_t /*zero5*/, int32_t * /*slot*/, const char *format, ...) {
  context *self = yfw::active_context();
  if (self == nullptr) {
    return;
  }
  va_list arguments;
  va_start(arguments, format);
  const std::string line = formatted(format, arguments);
  va_end(arguments);
  if (handle == self->error_log) {
    self->report(text_of_point(line));
  }
  self->log.write_short(line);
}

uint32_t ret_nc_yfw_trace_index_incr(void) {
  static std::atomic<uint32_t> index = 0;
  return ++index;
}

void _lstrace(void *handle, uint64_t /*flags*/, const char *text) {
  static_cast<yfw::trace_log *>(handle)->write_long(text);
}
