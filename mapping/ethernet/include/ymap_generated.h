// What the generated sources of all models share: the shapes of their functions, and the weak alias by which a
// hand-written definition replaces a generated one.
#pragma once

#include "yfw.h"

extern "C" {

// Entry points, walkers, and the functions of leaves, list entries and foreign nodes. Null `node` or `out`:
// YMAP_ERR_INVALID_ARGS. Any other status but 0 ends the walk and is handed up unchanged.
typedef uint32_t ymap_node_function(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out);

// Called when a container is entered, before its children; `child_count` is 0 when none of them will be visited.
typedef uint32_t ymap_container_function(yfw_ctx_t *ctx, yfw_node_t *node, uint32_t child_count, yfw_node_t *out);

}  // extern "C"

// Defines the function `plain`, declared before, as another name of `body`, which must stand in the same file. Being
// weak, it gives way to a definition of `plain` in another object file of the plug-in.
// NOLINTNEXTLINE(bugprone-macro-parentheses)
#define YMAP_WEAK_ALIAS(plain, body) decltype(plain) plain __attribute__((weak, alias(#body)))
