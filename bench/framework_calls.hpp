// The framework's calls for benchmarks: as little work as the plug-in can be run on, and a recording of them.
#pragma once

#include <cstdint>
#include <vector>

#include "yfw.h"

namespace bench {

enum class call_kind : uint32_t {
  none,  // recorded never: a replay reads it and calls nothing
  match,
  push,
  pop,
  add_path,
  is_add,
  is_delete,
  node_info,
  item_info,
  peek,
  enter_list,
  update_list,
  register_entry,
  unregister_entry,
  compare,
  should_log,
};

// One call with its arguments; out-parameters are the replayer's own.
struct call {
  call_kind kind;
  uint32_t number;
  void *first;
  void *second;
  const char *texts[4];
};

// While not null, calls are appended to it.
extern std::vector<call> *recording;

}  // namespace bench

// Makes the calls again, from a shared library as the plug-in is one. The result keeps the calls from being left out.
extern "C" uint32_t bench_replay(yfw_ctx_t *ctx, const bench::call *calls, uint64_t count);
