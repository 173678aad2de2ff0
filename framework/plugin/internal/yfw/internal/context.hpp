// The mapping context behind the ABI: what a plug-in sees first, the framework's own state behind it.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "yfw.h"
#include "yfw/internal/abi_call.hpp"
#include "yfw/manifest.hpp"
#include "yfw/trace.hpp"

namespace yfw {

// A framework call that cannot do what it is asked returns this; the context then holds the reason.
constexpr uint32_t status_framework_failure = 0xaaf2f000U;

class context;

// What the paths and list entries that a plug-in emits become.
class output_sink {
 public:
  virtual ~output_sink() = default;

  // yfw_map_datatree_add_path_flagged, without its context.
  virtual uint32_t add_path(context &ctx, std::string_view path, const char *ns, const char *value, yfw_node_t *source,
                            yfw_node_t **created, uint32_t flag) = 0;
  // yfw_map_search_or_add_list, without its context. `key_value` is not null.
  virtual uint32_t enter_list(context &ctx, yfw_node_t **current_list, std::string_view path, const char *key_value,
                              const char *key_name) = 0;
};

// The addresses of the texts that a plug-in compared last, latest first. A text of an input node identifies the node
// that it is at; the others are its own, such as the namespaces that it compares when no tag matches.
using compared_texts = std::array<const char *, 4>;

// An error point that was reached, where, and the innermost node that was open then.
struct reported_problem {
  std::string text;
  compared_texts compared;
  const yfw_node_t *inside;
};

// The node below `node` (or itself) whose tag or value is one of the texts, the latest first; null when there is none.
const yfw_node_t *node_compared(const yfw_node_t &node, const compared_texts &compared);

class context : public yfw_ctx_t {
 public:
  context(const manifest &plugin_description, yfw::trace_log &trace, output_sink &output, uint32_t request_operation);
  ~context();
  context(const context &) = delete;
  context &operator=(const context &) = delete;

  // Readies the record for the next walk: no error tag, no flags, no problem, nothing compared.
  void reset();

  // Remembers why a framework call fails and returns the status for it.
  uint32_t fail(std::string reason);

  // Remembers what is wrong with the input node that the plug-in is at: its value is omitted, or kept although it is
  // not valid.
  void report(std::string_view text);
  void report_kept(std::string_view text);

  // The entry of the list with schema path `path` that is open in the node hierarchy, or null.
  const yfw_node_t *open_entry(std::string_view path) const;

  const manifest &description;
  yfw::trace_log &log;
  output_sink &sink;

  yfw_request_record_t record{};
  std::vector<yfw_node_t *> hierarchy;
  std::array<yfw_itree_entry_t, 2> tree_stack{};  // the node handed over; the key leaf of its list entry, or null
  const yfw_node_t *native_entry = nullptr;       // the native configuration entry being reported
  yfw_node_t output_root{};

  compared_texts compared{};
  std::vector<reported_problem> problems;
  std::vector<reported_problem> kept;
  std::string failure;

  call_observer *observer = nullptr;  // sees the plug-in's calls and may answer them

 private:
  yfw_request_t request_{};
};

// The context of a plug-in's call.
inline context &context_of(yfw_ctx_t *ctx) {
  return *static_cast<context *>(ctx);
}

// Carries out a call of the ABI by `answer`, or, with an observer, by the observer, which gets the call from
// `describe`.
template <typename answer_t, typename describe_t>
uint32_t observed(context &ctx, const answer_t &answer, const describe_t &describe) {
  return ctx.observer == nullptr ? answer() : ctx.observer->pass(describe(), answer);
}

// Read at every comparison of a walk: found without a call, since this library is there before any thread is.
[[gnu::visibility("hidden"), gnu::tls_model("initial-exec")]] extern constinit thread_local context *running_context;

// The context whose plug-in call is running on this thread, for the calls of the ABI that carry none. Null outside.
inline context *active_context() {
  return running_context;
}

// Makes a context the active one for its lifetime.
class active_scope {
 public:
  explicit active_scope(context &ctx);
  ~active_scope();
  active_scope(const active_scope &) = delete;
  active_scope &operator=(const active_scope &) = delete;

 private:
  context *outer_;
};

// Opens a node in the node hierarchy for its lifetime, as the framework does for the nodes above an entry point.
class open_node {
 public:
  open_node(context &ctx, yfw_node_t &node) : ctx_(ctx) {
    ctx_.hierarchy.push_back(&node);
  }
  ~open_node() {
    ctx_.hierarchy.pop_back();
  }
  open_node(const open_node &) = delete;
  open_node &operator=(const open_node &) = delete;

 private:
  context &ctx_;
};

}  // namespace yfw
