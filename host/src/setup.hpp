// What a command works with: the modules, the plug-in and the trace.
#pragma once

#include "command_line.hpp"
#include "yfw/plugin.hpp"
#include "yfw/schema.hpp"
#include "yfw/trace.hpp"

namespace ymap {

class setup {
 public:
  // Loads what the options name. By default that is the plug-in and the modules beside this program's own installation
  // or build.
  explicit setup(const common_options &options);
  // Prints the ring.
  ~setup();
  setup(const setup &) = delete;
  setup &operator=(const setup &) = delete;

  const yfw::schema &schema() const {
    return schema_;
  }
  const yfw::plugin &plugin() const {
    return plugin_;
  }
  yfw::trace_log &trace() {
    return trace_;
  }

 private:
  yfw::trace_log trace_;
  yfw::schema schema_;
  yfw::plugin plugin_;
};

}  // namespace ymap
