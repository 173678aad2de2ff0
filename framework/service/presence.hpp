// Which nodes of a client's edit are there, as the client would read them.
#pragma once

#include <set>
#include <vector>

#include "yfw/data_tree.hpp"
#include "yfw/document.hpp"
#include "yfw/native_device.hpp"
#include "yfw/plugin.hpp"
#include "yfw/trace.hpp"

namespace yfw {

// The error of a request that a device's answer cannot be translated for: its path is the device's, where an error's
// place is the client's.
client_error unreadable(const native_device &device, const error &fault);

class presence {
 public:
  // Of nodes of `request`; all must outlive it.
  presence(const document &request, const plugin &mapping, trace_log &log)
      : request_(request), mapping_(mapping), log_(log), asked_(request.modules()), found_(request.modules()) {}

  // Asks for a node of the request.
  void add(const yfw_node_t &node) {
    nodes_.insert(&node);
  }

  // Reads all that was asked for from the device, at once; nothing when nothing was.
  void read(const native_device &device);

  // Whether the client would read the configuration of a node that was asked for as present.
  bool holds(const yfw_node_t &node) const;

 private:
  void add_paths();
  void add_path_to(const yfw_node_t &node);
  const data_node *found(const yfw_node_t &node) const;

  const document &request_;
  const plugin &mapping_;
  trace_log &log_;
  std::set<const yfw_node_t *> nodes_;
  data_tree asked_;
  std::set<const data_node *> whole_;  // of these all that is below is asked for
  data_tree found_;
};

}  // namespace yfw
