// Watching the calls of a plug-in's functions.
#pragma once

#include <memory>
#include <string>

#include "yfw.h"

namespace yfw {

class context;

// The forms of the functions that are called: of an entry point, and of the two kinds of defaults functions.
enum class call_form { entry, report_defaults, create_defaults };

// One call that is watched, from before it to its end. Destroyed without `finish`: the plug-in did not return.
class tapped_call {
 public:
  virtual ~tapped_call() = default;
  virtual void finish(uint32_t status) = 0;
};

// Sees every call of a plug-in's function in this process while it is installed.
class call_tap {
 public:
  virtual ~call_tap() = default;
  virtual std::unique_ptr<tapped_call> begin(context &ctx, call_form form, const std::string &function,
                                             yfw_node_t *node) = 0;
};

// Installs a tap, which stays its caller's, in place of the one before; null for none. Not while a plug-in runs.
void install_call_tap(call_tap *tap);
call_tap *installed_call_tap();

}  // namespace yfw
