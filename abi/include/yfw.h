// The ABI between a mapping plug-in and the YANG model-mapping framework: the records that both sides touch, by offset,
// and the calls that a plug-in makes. A plug-in built against this header runs under any framework that keeps it.
//
// Nodes, contexts and request records belong to the framework and live for the duration of one request. Members named
// `framework_…` are the framework's own: a plug-in neither reads nor writes them.
#pragma once

#include <cstddef>
#include <cstdint>

// Version of the layouts and calls below; raised with every change to either.
#define YFW_ABI_VERSION 1

// Bits of `yfw_node_t::flags`.
#define YFW_NODE_READ_FLAG 0x02U          // set by the framework, read by leaf wrappers of requests
#define YFW_NODE_OPERATION_CHANGED 0x10U  // set together with every change of `operation`
#define YFW_NODE_HAS_CHILDREN 0x40U       // `children` and `child_count` are meaningful

// Bit of `yfw_node_t::mark_flags`: `mapping_mark` was written.
#define YFW_MARK_WRITTEN 0x02U

// Node operations, numbered like the edit operations of NETCONF in the order of RFC 6241, section 7.2.
#define YFW_OPERATION_MERGE 0U
#define YFW_OPERATION_REPLACE 1U
#define YFW_OPERATION_CREATE 2U
#define YFW_OPERATION_DELETE 3U
#define YFW_OPERATION_REMOVE 4U

// Request operations. Any other value writes, as 1 does: the node operations say what.
#define YFW_REQUEST_READ_CONFIG 0U
#define YFW_REQUEST_WRITE 1U
#define YFW_REQUEST_READ_ALL 10U

// Levels of `yfw_map_add_to_node_hierarchy`.
#define YFW_LEVEL_CONTAINER 1U
#define YFW_LEVEL_LIST_ENTRY 2U

extern "C" {

// One node of a data tree. Child i of a node is `children[i]`; the array belongs to the framework.
struct yfw_node_t {
  const char *tag;    // YANG identifier without prefix; null only in a malformed tree
  const char *value;  // text of a leaf; null for containers, list entries and leaves without a value
  const char *ns;     // namespace of the defining module
  uint8_t framework_24[4];
  uint32_t operation;  // YFW_OPERATION_…
  uint8_t framework_32[16];
  yfw_node_t *children;
  uint32_t child_count;
  uint8_t framework_60[12];
  uint32_t mapping_mark;
  uint8_t framework_76[16];
  uint8_t mark_flags;
  uint8_t framework_93[3];
  void *framework_96;
  uint8_t framework_104[88];
  uint8_t flags;
  uint8_t framework_193[7];
};

struct yfw_request_t {
  uint32_t operation;  // YFW_REQUEST_…
};

struct yfw_request_record_t {
  yfw_request_t *request;
  char *error_tag;           // set by the plug-in with yfw_strdup, reported and freed by the framework
  uint32_t walker_flags;     // 0x40 and 0x80 while a replaced container is walked
  yfw_node_t *current_list;  // output list entry that leaves are written into
  uint8_t output_list_count;
  uint32_t expansion_in_progress;  // 1: a container is being expanded into all of its leaves
  uint32_t expansion_flags;
  uint32_t leaf_marking_suppressed;
  uint8_t framework_48[1124];
  // The 28 selection flags: the bits given by YFW_SELECTION_… of these bytes.
  uint8_t selection_1172;
  uint8_t framework_1173[43];
  uint8_t selection_1216;
  uint8_t framework_1217[23];
  uint8_t selection_1240;
  uint8_t framework_1241[7];
  uint8_t selection_1248;
  uint8_t framework_1249[23];
  uint8_t selection_1272;
  uint8_t selection_1273;
  uint8_t framework_1274[6];
  uint8_t selection_1280;
  uint8_t framework_1281[7];
  uint32_t selection_mode;
  uint8_t selection_1292;
  uint8_t framework_1293[332];
  uint8_t selection_1625;
  uint8_t framework_1626[6];
};

#define YFW_SELECTION_1172 0x07U
#define YFW_SELECTION_1216 0x03U
#define YFW_SELECTION_1240 0x03U
#define YFW_SELECTION_1248 0x07U
#define YFW_SELECTION_1272 0xffU
#define YFW_SELECTION_1273 0x1fU
#define YFW_SELECTION_1280 0x03U
#define YFW_SELECTION_1292 0x03U
#define YFW_SELECTION_1625 0x10U

struct yfw_debug_ctx_t {
  alignas(8) uint8_t framework_0[16];
};

// The mapping context. A framework may allocate more behind it for itself.
struct yfw_ctx_t {
  yfw_request_record_t *request;
  yfw_debug_ctx_t _debug_ctx;
  void *error_log;  // handles for _kel_dt_log_filter_adv
  void *trace_log;
  void *ring_trace;            // handle for _lstrace
  int32_t ring_trace_enabled;  // non-zero: long-form lines are written
  uint8_t framework_52[4];
};

// An entry of the framework's tree stack.
struct yfw_itree_entry_t {
  yfw_node_t *node;
};

// Non-zero when both strings are given and equal. Tags are passed as (node's text, literal), namespaces as (literal,
// node's text); either may be null.
uint32_t yfw_map_do_these_match(const char *first, const char *second);

// Push and pop a node of the input tree. While it is open, list keys of emitted paths are taken from it.
void yfw_map_add_to_node_hierarchy(yfw_ctx_t *ctx, yfw_node_t *node, uint32_t level);
void yfw_map_remove_from_node_hierarchy(yfw_ctx_t *ctx, yfw_node_t *node);

// Adds an absolute schema path to the output: with a value it sets the leaf; without a value but with a source node it
// carries the source's operation (a delete); with neither it asks for the leaf. `created`, if not null, receives the
// output node. `zero` is 0. `flag` is 0 for a native operational path and 1 for every other. Strings are copied.
uint32_t yfw_map_datatree_add_path_flagged(yfw_ctx_t *ctx, yfw_node_t *out, const char *path, const char *ns,
                                           const char *value, yfw_node_t *source, yfw_node_t **created, uint32_t zero,
                                           uint32_t flag);

// Non-zero when the node's operation adds (merge, replace, create) or deletes (delete, remove) data in a request that
// writes; zero in a read.
uint32_t yfw_map_is_request_add(const yfw_node_t *node);
uint32_t yfw_map_is_request_delete(const yfw_node_t *node);

// The value of key `key_name` of the enclosing entry of list `list_path`; YMAP_ERR_NO_MATCH for a native entry without
// counterpart. The text belongs to the framework.
uint32_t yfw_map_get_node_info(yfw_ctx_t *ctx, const char *list_path, const char *key_name, const char **value);

// 0 and the item's value when the current entry of `list_path` has the leaf `container`/`leaf`, else non-zero.
uint32_t yfw_map_get_node_info_mpls_static(yfw_ctx_t *ctx, const char *list_path, const char *container,
                                           const char *leaf, const char **value);

// The entry `level` levels up the tree stack; a result below 0x20000000 is a success.
uint32_t yfw_map_util_itree_stack_peak_level(yfw_ctx_t *ctx, uint32_t level, yfw_itree_entry_t **entry);

// Finds or adds the output entry of `list_path` with that key and stores it in `*current_list`; YMAP_ERR_NO_MATCH when
// the entry is not wanted.
uint32_t yfw_map_search_or_add_list(yfw_ctx_t *ctx, yfw_node_t *out, yfw_node_t **current_list, const char *list_path,
                                    const char *key_value, const char *key_name, const char *ns);

// Makes the list with that native schema path the current one for the entry about to be walked.
uint32_t yfw_map_update_current_list_node(yfw_ctx_t *ctx, const char *schema_path);

// Register and unregister a list entry; registering raises the record's `output_list_count`.
void yfw_add_to_output_list_ctx(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out);
void yfw_remove_from_output_list_ctx(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out);

// A copy from malloc, charged to `owner`; null for null.
char *yfw_strdup(const char *string, const char *owner);

// Bounds-checked comparison: 0 and `*indicator` 0 when equal over at most `maximum` characters and the terminating
// zero.
int strcmp_s(const char *first, size_t maximum, const char *second, int *indicator);

// Trace services. Levels: 3 for trace points, 0 for error points. `slot` is the call site's own filter slot.
int32_t yfw_debug_should_log(yfw_debug_ctx_t *debug_ctx, int32_t level);
void _kel_dt_log_filter_adv(void *handle, int32_t zero1, int32_t zero2, int32_t zero3, int32_t zero4, int32_t zero5,
                            int32_t *slot, const char *format, ...) __attribute__((format(printf, 8, 9)));
uint32_t ret_nc_yfw_trace_index_incr(void);
void _lstrace(void *handle, uint64_t flags, const char *text);

// The entry of the neighbouring plug-in that maps openconfig-if-aggregate under `ethernet/config`.
uint32_t ymap_ox_ocif_openconfigifaggregate_augment_lvla_config(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out);

}  // extern "C"

static_assert(sizeof(void *) == 8);
static_assert(sizeof(yfw_node_t) == 200);
static_assert(offsetof(yfw_node_t, tag) == 0);
static_assert(offsetof(yfw_node_t, value) == 8);
static_assert(offsetof(yfw_node_t, ns) == 16);
static_assert(offsetof(yfw_node_t, operation) == 28);
static_assert(offsetof(yfw_node_t, children) == 48);
static_assert(offsetof(yfw_node_t, child_count) == 56);
static_assert(offsetof(yfw_node_t, mapping_mark) == 72);
static_assert(offsetof(yfw_node_t, mark_flags) == 92);
static_assert(offsetof(yfw_node_t, framework_96) == 96);
static_assert(offsetof(yfw_node_t, flags) == 192);
static_assert(offsetof(yfw_request_t, operation) == 0);
static_assert(sizeof(yfw_request_record_t) == 1632);
static_assert(offsetof(yfw_request_record_t, request) == 0);
static_assert(offsetof(yfw_request_record_t, error_tag) == 8);
static_assert(offsetof(yfw_request_record_t, walker_flags) == 16);
static_assert(offsetof(yfw_request_record_t, current_list) == 24);
static_assert(offsetof(yfw_request_record_t, output_list_count) == 32);
static_assert(offsetof(yfw_request_record_t, expansion_in_progress) == 36);
static_assert(offsetof(yfw_request_record_t, expansion_flags) == 40);
static_assert(offsetof(yfw_request_record_t, leaf_marking_suppressed) == 44);
static_assert(offsetof(yfw_request_record_t, selection_1172) == 1172);
static_assert(offsetof(yfw_request_record_t, selection_1216) == 1216);
static_assert(offsetof(yfw_request_record_t, selection_1240) == 1240);
static_assert(offsetof(yfw_request_record_t, selection_1248) == 1248);
static_assert(offsetof(yfw_request_record_t, selection_1272) == 1272);
static_assert(offsetof(yfw_request_record_t, selection_1273) == 1273);
static_assert(offsetof(yfw_request_record_t, selection_1280) == 1280);
static_assert(offsetof(yfw_request_record_t, selection_mode) == 1288);
static_assert(offsetof(yfw_request_record_t, selection_1292) == 1292);
static_assert(offsetof(yfw_request_record_t, selection_1625) == 1625);
static_assert(offsetof(yfw_ctx_t, request) == 0);
static_assert(offsetof(yfw_ctx_t, _debug_ctx) == 8);
static_assert(offsetof(yfw_ctx_t, error_log) == 24);
static_assert(offsetof(yfw_ctx_t, trace_log) == 32);
static_assert(offsetof(yfw_ctx_t, ring_trace) == 40);
static_assert(offsetof(yfw_ctx_t, ring_trace_enabled) == 48);
static_assert(sizeof(yfw_ctx_t) == 56);
static_assert(sizeof(yfw_debug_ctx_t) == 16);
static_assert(offsetof(yfw_itree_entry_t, node) == 0);
