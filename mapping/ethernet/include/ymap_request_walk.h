// What a walker of requests does beside tracing and calling: it marks what it maps, hands a container that stands for
// all of its leaves to each of them (expansion), and walks a replaced container twice, first as a removal.
#pragma once

#include "ymap_frame.h"

// Bits of the record's expansion flags. A leaf that was mapped in a read leaves one of the two pending bits; the walker
// of its container then turns a lone PENDING_WHOLE into WHOLE.
#define YMAP_EXPANSION_WHOLE_ 0x1U          // expand the container although it has children
#define YMAP_EXPANSION_PENDING_LEAF_ 0x2U   // a leaf without YFW_NODE_READ_FLAG was mapped
#define YMAP_EXPANSION_PENDING_WHOLE_ 0x4U  // a leaf with it was mapped
#define YMAP_EXPANSION_SEEN_ 0x10000U       // as before, but survives the mask
// Hexadecimal, though it is made of ones and zeros only: bits 0 to 3 are among those that it clears.
#define YMAP_EXPANSION_MASK_ 0x11111110U

// Bits of the record's walker flags: in the first pass of a replace, and after a pass.
#define YMAP_WALKER_REMOVING_ 0x40U
#define YMAP_WALKER_PASSED_ 0x80U

// Mapping marks.
#define YMAP_MARK_LEAF_ 1U
#define YMAP_MARK_CONTAINER_ 3U
#define YMAP_MARK_WHOLE_ 6U

// One walk over a container.
struct ymap_container_walk {
  bool is_nested;        // inside the expansion of an enclosing container: neither pushed nor marked
  uint32_t pass_count;   // 2 for a replaced container, else 1
  uint32_t child_count;  // children to visit; the first pass of a replace visits none
  yfw_node_t *detached_children;
  uint32_t detached_count;
  uint8_t detached_flag;
};

inline void ymap_mark(yfw_node_t *node, uint32_t mark) {
  node->mapping_mark = mark;
  node->mark_flags |= YFW_MARK_WRITTEN;
}

// Keeps a copy of a tag that the request should not have named, for the framework to report and free.
inline void ymap_reject_tag(yfw_ctx_t *ctx, const yfw_node_t *node) {
  ctx->request->error_tag = yfw_strdup(node->tag, "YFW MAP");
}

// Marks a leaf that was just mapped, whatever came of it, unless it stands for its container.
inline void ymap_mark_leaf(yfw_ctx_t *ctx, yfw_node_t *leaf) {
  yfw_request_record_t *record = ctx->request;
  if (record->expansion_in_progress == 1 || record->leaf_marking_suppressed != 0) {
    return;
  }
  ymap_mark(leaf, YMAP_MARK_LEAF_);
  if (!ymap_is_read(ctx)) {
    return;
  }
  if ((leaf->flags & YFW_NODE_READ_FLAG) != 0) {
    ymap_mark(leaf, YMAP_MARK_WHOLE_);
    record->expansion_flags |= YMAP_EXPANSION_PENDING_WHOLE_ | YMAP_EXPANSION_SEEN_;
  } else {
    record->expansion_flags |= YMAP_EXPANSION_PENDING_LEAF_;
  }
}

// Opens a container: pushes and marks it, unless it is walked as part of an expansion.
inline ymap_container_walk ymap_enter_container(yfw_ctx_t *ctx, yfw_node_t *node) {
  yfw_request_record_t *record = ctx->request;
  ymap_container_walk walk = {};
  walk.is_nested = record->expansion_in_progress == 1;
  walk.child_count = ymap_child_count(node);
  if (!walk.is_nested) {
    yfw_map_add_to_node_hierarchy(ctx, node, YFW_LEVEL_CONTAINER);
    ymap_mark(node, YMAP_MARK_CONTAINER_);
    if (ymap_is_read(ctx)) {
      record->expansion_flags &= YMAP_EXPANSION_MASK_;
    }
  } else if ((record->expansion_flags & YMAP_EXPANSION_WHOLE_) != 0) {
    walk.child_count = 0;
  }
  walk.pass_count = node->operation == YFW_OPERATION_REPLACE ? 2 : 1;
  return walk;
}

// Begins pass 0 or 1 and returns the number of children that it visits. The first pass of a replace sees the container
// as a removal without children.
inline uint32_t ymap_begin_pass(yfw_ctx_t *ctx, yfw_node_t *node, ymap_container_walk *walk, uint32_t pass) {
  if (walk->pass_count == 1 || pass != 0) {
    return walk->child_count;
  }
  ymap_change_operation(node, YFW_OPERATION_REMOVE);
  ctx->request->walker_flags |= YMAP_WALKER_REMOVING_;
  walk->detached_children = node->children;
  walk->detached_count = node->child_count;
  walk->detached_flag = node->flags & YFW_NODE_HAS_CHILDREN;
  node->children = nullptr;
  node->child_count = 0;
  node->flags &= static_cast<uint8_t>(~YFW_NODE_HAS_CHILDREN);
  return 0;
}

// Ends a pass. A replaced container gets its children back and merges from now on.
inline void ymap_end_pass(yfw_ctx_t *ctx, yfw_node_t *node, const ymap_container_walk *walk) {
  if (walk->pass_count == 1) {
    return;
  }
  ymap_change_operation(node, YFW_OPERATION_MERGE);
  ctx->request->walker_flags |= YMAP_WALKER_PASSED_;
  ctx->request->walker_flags &= ~YMAP_WALKER_REMOVING_;
  node->children = walk->detached_children;
  node->child_count = walk->detached_count;
  node->flags &= static_cast<uint8_t>(~YFW_NODE_HAS_CHILDREN);
  node->flags |= walk->detached_flag;
}

// Closes the container after its last pass.
inline void ymap_leave_container(yfw_ctx_t *ctx, yfw_node_t *node, const ymap_container_walk *walk) {
  if (walk->pass_count != 1) {
    ctx->request->walker_flags &= ~(YMAP_WALKER_REMOVING_ | YMAP_WALKER_PASSED_);
  }
  if (!walk->is_nested) {
    yfw_map_remove_from_node_hierarchy(ctx, node);
  }
}

// After the children of a pass: whether the container stands for all of its leaves. Settles what they left pending.
inline bool ymap_stands_for_all(yfw_ctx_t *ctx, uint32_t child_count) {
  uint32_t *flags = &ctx->request->expansion_flags;
  const uint32_t pending = YMAP_EXPANSION_PENDING_LEAF_ | YMAP_EXPANSION_PENDING_WHOLE_;
  if ((*flags & pending) == YMAP_EXPANSION_PENDING_WHOLE_) {
    *flags = (*flags | YMAP_EXPANSION_WHOLE_) & ~pending;
  }
  return child_count == 0 || (*flags & YMAP_EXPANSION_WHOLE_) != 0;
}

// Whether the request reads the node or deletes it.
inline bool ymap_is_read_or_delete(const yfw_ctx_t *ctx, const yfw_node_t *node) {
  return ymap_is_read(ctx) || yfw_map_is_request_delete(node) != 0;
}

// Begins an expansion; the result, whether an enclosing one was in progress, goes to its end.
inline bool ymap_begin_expansion(yfw_ctx_t *ctx) {
  const bool is_nested = ctx->request->expansion_in_progress == 1;
  ctx->request->expansion_in_progress = 1;
  return is_nested;
}

inline void ymap_end_expansion(yfw_ctx_t *ctx, bool is_nested) {
  if (!is_nested) {
    ctx->request->expansion_in_progress = 0;
  }
  ctx->request->expansion_flags &= YMAP_EXPANSION_MASK_;
}

// Makes a delete a removal while the node stands for what it contains, which need not all be there. The result, whether
// it was changed, goes to ymap_restore_delete.
inline bool ymap_relax_delete(yfw_node_t *node) {
  const bool is_delete = node->operation == YFW_OPERATION_DELETE && yfw_map_is_request_delete(node) != 0;
  if (is_delete) {
    ymap_change_operation(node, YFW_OPERATION_REMOVE);
  }
  return is_delete;
}

inline void ymap_restore_delete(yfw_node_t *node, bool is_relaxed) {
  if (is_relaxed) {
    ymap_change_operation(node, YFW_OPERATION_DELETE);
  }
}
