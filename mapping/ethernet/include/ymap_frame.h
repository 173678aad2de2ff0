// The frame of every function of a mapping plug-in: status codes, the context assertion, trace and error points.
//
//   YMAP_START(ctx);                                   assert the context, trace "Start"
//   if (node == nullptr || out == nullptr) {
//     YMAP_ERR(ctx, "Invalid arguments passed!");
//     return YMAP_ERR_INVALID_ARGS;
//   }
//   …
//   YMAP_TRC(ctx, "End");
//
// A point is written on one source line. It takes the text that follows "ctx=%p," as a literal and at most one string.
#pragma once

#include "yfw.h"
#include "ymap_status.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

// Raised when generated code must be written anew to fit this header.
#define YMAP_FRAME_VERSION 1

#define YMAP_LEVEL_ERR_ 0
#define YMAP_LEVEL_TRC_ 3
#define YMAP_RING_FLAGS_ 0x10101000000ULL
#define YMAP_RING_LINE_BYTES_ 1024

// Prints the assertion line and ends the process by a fault at the place of the assertion. The stream stays locked, so
// that nothing else is printed after the line.
[[noreturn]] __attribute__((always_inline)) inline void ymap_assertion_failed_(const char *file, int line,
                                                                               const char *expression) {
  flockfile(stderr);
  (void)std::fprintf(stderr, "%s: %d %s -- assertion failed\n", file, line, expression);
  volatile uintptr_t no_mans_address = 1;
  *reinterpret_cast<volatile uint32_t *>(no_mans_address) = 0;  // NOLINT(performance-no-int-to-ptr)
  std::abort();
}

inline const yfw_debug_ctx_t *ymap_debug_ctx_of_(const yfw_ctx_t *ctx) {
  return &ctx->_debug_ctx;
}

// Writes one long-form line, cut to YMAP_RING_LINE_BYTES_ - 1 characters.
__attribute__((format(printf, 2, 3), cold, noinline)) inline void ymap_ring_trace_(yfw_ctx_t *ctx, const char *format,
                                                                                   ...) {
  char line[YMAP_RING_LINE_BYTES_];
  va_list arguments;
  va_start(arguments, format);
  (void)std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  _lstrace(ctx->ring_trace, YMAP_RING_FLAGS_, line);
}

// One point: its slot, then the short form through the filtered log, then the long form to the ring, each if wanted.
// The sequence number is drawn only for a line that is written.
#define YMAP_POINT_(ctx, level, log, kind, text, ...)                                             \
  do {                                                                                            \
    static int32_t ymap_slot_ = -1;                                                               \
    if (yfw_debug_should_log(&(ctx)->_debug_ctx, level) != 0) {                                   \
      _kel_dt_log_filter_adv((ctx)->log, 0, 0, 0, 0, 0, &ymap_slot_, kind ": YFW: ctx=%p," text,  \
                             static_cast<void *>(ctx) __VA_OPT__(, ) __VA_ARGS__);                \
    }                                                                                             \
    if ((ctx)->ring_trace_enabled != 0) {                                                         \
      ymap_ring_trace_((ctx), "#%u: " kind ": %s:%d ctx=%p," text, ret_nc_yfw_trace_index_incr(), \
                       static_cast<const char *>(__func__), __LINE__,                             \
                       static_cast<void *>(ctx) __VA_OPT__(, ) __VA_ARGS__);                      \
    }                                                                                             \
  } while (false)

// A trace point and an error point.
#define YMAP_TRC(ctx, ...) YMAP_POINT_(ctx, YMAP_LEVEL_TRC_, trace_log, "TRC", __VA_ARGS__)
#define YMAP_ERR(ctx, ...) YMAP_POINT_(ctx, YMAP_LEVEL_ERR_, error_log, "ERR", __VA_ARGS__)

// The assertions on the context, for functions that trace no "Start". The second cannot fail once the first has passed.
#define YMAP_ASSERT(ctx)                                                            \
  do {                                                                              \
    if ((ctx) == nullptr) {                                                         \
      ymap_assertion_failed_(__FILE__, __LINE__, "NULL != ctx");                    \
    }                                                                               \
    if (ymap_debug_ctx_of_(ctx) == nullptr) {                                       \
      ymap_assertion_failed_(__FILE__, __LINE__, "NULL != (&((ctx)->_debug_ctx))"); \
    }                                                                               \
  } while (false)

// The assertions and the "Start" point in one: both report the same line.
#define YMAP_START(ctx)     \
  do {                      \
    YMAP_ASSERT(ctx);       \
    YMAP_TRC(ctx, "Start"); \
  } while (false)

// The operation of the request that the context belongs to, YFW_REQUEST_….
inline uint32_t ymap_request_operation(const yfw_ctx_t *ctx) {
  return ctx->request->request->operation;
}

// Whether the request reads: a leaf that it names is to be fetched.
inline bool ymap_is_read(const yfw_ctx_t *ctx) {
  const uint32_t operation = ymap_request_operation(ctx);
  return operation == YFW_REQUEST_READ_CONFIG || operation == YFW_REQUEST_READ_ALL;
}

// Whether the request reads operational state beside configuration.
inline bool ymap_is_read_all(const yfw_ctx_t *ctx) {
  return ymap_request_operation(ctx) == YFW_REQUEST_READ_ALL;
}

// The number of children to walk: 0 without the has-children flag, whatever the count field holds.
inline uint32_t ymap_child_count(const yfw_node_t *node) {
  return (node->flags & YFW_NODE_HAS_CHILDREN) != 0 ? node->child_count : 0;
}

// Whether children are counted but the array is missing.
inline bool ymap_is_bad_tree(const yfw_node_t *node) {
  return ymap_child_count(node) != 0 && node->children == nullptr;
}

// Changes a node's operation and says so in its flags.
inline void ymap_change_operation(yfw_node_t *node, uint32_t operation) {
  node->operation = operation;
  node->flags |= YFW_NODE_OPERATION_CHANGED;
}
