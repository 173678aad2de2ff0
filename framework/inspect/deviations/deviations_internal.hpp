// What the sources of deviations share.
#pragma once

#include <libyang/libyang.h>

#include <memory>
#include <string>
#include <vector>

#include "yfw/deviations.hpp"
#include "yfw/internal/schema_internal.hpp"

namespace yfw {

// The schema node identifier with plain names, including choices and cases (RFC 7950, section 6.5).
std::string schema_path(const lysc_node *node);

// The nodes that `when`, `must` and leafrefs of a model refer to.
class model_references {
 public:
  explicit model_references(const schema &modules);

  // Why a deviation would break the model; empty when it would not. `all`: the statements of the module, whose removed
  // nodes refer to nothing any more.
  std::string conflict_of(const deviation &wanted, const std::vector<deviation> &all) const;

 private:
  struct reference {
    const lysc_node *from;
    const lysc_node *to;
    const char *kind;
  };
  void add(const lysc_node *node);
  void add_type(const lysc_node *node, const lysc_type *type);
  void add_atoms(const lysc_node *from, const lysc_node *context, const lyxp_expr *expression,
                 const lysc_prefix *prefixes, const char *kind);

  std::vector<reference> references_;
};

// A new context with the modules in force and the given one. Throws `error` when it is not valid together with them.
struct deviated_models {
  std::unique_ptr<ly_ctx, context_deleter> context;
  const lys_module *module;
};
deviated_models load_with(const schema &modules, const std::string &text, const std::string &file);

}  // namespace yfw
