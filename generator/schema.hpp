// YANG modules, through libyang.
#pragma once

#include "error.hpp"

#include <libyang/libyang.h>

#include <memory>
#include <string>
#include <vector>

namespace ymapgen {

// Loads modules from folders, with all features. The nodes it hands out live as long as it does.
class schema {
 public:
  // Throws `error` when a folder cannot be read.
  explicit schema(const std::vector<std::string> &folders);

  // The newest revision of a module in the folders. `at` names the line that asks for it, for the error when there is
  // none or it does not compile.
  const lys_module *load(const std::string &name, const place &at);

  // Data nodes that stand at the top of any module loaded so far.
  std::vector<const lysc_node *> top_nodes() const;

 private:
  struct context_deleter {
    void operator()(ly_ctx *context) const {
      ly_ctx_destroy(context);
    }
  };
  std::unique_ptr<ly_ctx, context_deleter> context_;
};

// Data nodes below `parent` in statement order, augments included; nodes of a choice stand in its place.
std::vector<const lysc_node *> children_of(const lysc_node *parent);

// "/a/b/c", without prefixes; "/" for null.
std::string path_of(const lysc_node *node);

}  // namespace ymapgen
