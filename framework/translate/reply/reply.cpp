#include "yfw/reply.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <deque>
#include <iterator>
#include <unordered_map>
#include <utility>

#include "data_builder.hpp"
#include "reply_part.hpp"
#include "yfw/internal/context.hpp"
#include "yfw/internal/manifest_nodes.hpp"
#include "yfw/internal/plugin_call.hpp"
#include "yfw/node.hpp"
#include "ymap_status.h"

namespace yfw {
namespace {

constexpr const char *not_known = "is omitted: not defined in the modules";

uint32_t request_operation(content wanted) {
  return wanted == content::config ? YFW_REQUEST_READ_CONFIG : YFW_REQUEST_READ_ALL;
}

// Hides a node from walks as long as it lives: plug-ins ignore unknown tags, so it has an empty one meanwhile.
class hidden_node {
 public:
  explicit hidden_node(yfw_node_t &node) : node_(node), tag_(std::exchange(node.tag, "")) {}
  ~hidden_node() {
    node_.tag = tag_;
  }
  hidden_node(const hidden_node &) = delete;
  hidden_node &operator=(const hidden_node &) = delete;

 private:
  yfw_node_t &node_;
  const char *tag_;
};

class reply_translation {
 public:
  reply_translation(document &native, const plugin &mapping, const reply_options &options, trace_log &log,
                    reply_part &result)
      : document_(native),
        mapping_(mapping),
        result_(result),
        builder_(result_.data, options.entries, options.checks_values),
        context_(mapping.description(), log, builder_, request_operation(options.wanted)) {
    if (options.wanted == content::nonconfig) {
      context_.record.selection_1172 = 0x01;
      context_.record.selection_mode = 2;
    }
  }

  void run() {
    require_no_repetition(document_.roots(), false);
    for (yfw_node_t &root : document_.roots()) {
      visit_envelope(root);
    }
    result_.met.insert(builder_.entered_names().begin(), builder_.entered_names().end());
  }

 private:
  void visit_envelope(yfw_node_t &node) {
    if (!is_envelope(node)) {
      require_top_level(node);
      place_node(node, nullptr);
      return;
    }
    const std::string_view tag = node.tag;
    if (tag == "rpc-error") {
      const yfw_node_t *message = child(node, "error-message");
      throw error(document_.where(node), message != nullptr && message->value != nullptr
                                             ? "the device reports an error: " + in_quotes(message->value)
                                             : "the device reports an error");
    }
    if (tag != "rpc-reply" && tag != "data" && tag != "ok") {
      throw error(document_.where(node),
                  in_quotes(tag) + " is not a reply, expected 'rpc-reply', 'data' or native data");
    }
    for (yfw_node_t &below : children(node)) {
      visit_envelope(below);
    }
  }

  // Entries that are in no other entry are compared with those of earlier documents, too: the whole text has them once.
  void require_no_repetition(std::span<const yfw_node_t> level, bool is_in_entry) {
    if (!is_module_sequence(level)) {
      require_no_repeated_siblings(level, is_in_entry);
    }
    for (const yfw_node_t &node : level) {
      if (!children(node).empty()) {
        require_no_repetition(children(node), is_in_entry || is_list(extra(node).schema));
      }
    }
  }

  // Whether these are no list entries and in the order of the module, so that no two are the same. Most data of devices
  // is: then there is nothing to remember.
  static bool is_module_sequence(std::span<const yfw_node_t> level) {
    const lysc_node *following = level.empty() ? nullptr : extra(level.front()).schema;
    for (const yfw_node_t &node : level) {
      const lysc_node *schema = extra(node).schema;
      if (schema == nullptr || schema != following || is_list(schema)) {
        return false;
      }
      following = schema->next;
    }
    return true;
  }

  void require_no_repeated_siblings(std::span<const yfw_node_t> level, bool is_in_entry) {
    ++level_;
    for (const yfw_node_t &node : level) {
      const lysc_node *schema = extra(node).schema;
      const bool is_known = schema != nullptr && !is_leaf_list(schema);
      if (is_known && !(is_list(schema) ? is_new_entry(node, is_in_entry) : is_new_node(schema))) {
        throw error(document_.where(node), in_quotes(node.tag) + " appears twice");
      }
    }
  }

  bool is_new_node(const lysc_node *schema) {
    size_t &last = last_level_of_[schema];
    return std::exchange(last, level_) != level_;
  }

  bool is_new_entry(const yfw_node_t &node, bool is_in_entry) {
    const std::vector<std::string_view> names = keys(extra(node).schema);
    std::string identity = std::to_string(reinterpret_cast<uintptr_t>(extra(node).schema));
    identity += is_in_entry ? ' ' + std::to_string(level_) : "";
    for (const std::string_view name : names) {
      const yfw_node_t *key = child(node, name);
      identity += ' ' + std::string(key != nullptr && key->value != nullptr ? key->value : "");
      identity += '\0';
    }
    return names.empty() || (is_in_entry ? nested_ : result_.entries).insert(std::move(identity)).second;
  }

  void require_top_level(const yfw_node_t &node) const {
    if (extra(node).schema == nullptr) {
      const std::string written = in_quotes(node.tag) + " of namespace " + in_quotes(node.ns);
      throw error(document_.where(node), document_.modules().unknown_name({nullptr}, node.tag, written));
    }
  }

  // Translates `node` by the entry point for its module, goes below it, or notes that it is unmapped.
  void place_node(yfw_node_t &node, const lysc_node *above) {
    const lysc_node *schema = extra(node).schema;
    if (const entry_point *entry = entry_for(above, node.ns); entry != nullptr) {
      std::deque<hidden_node> unknown;
      note_unknown(node, above, unknown);
      translate_node(node, *entry);
    } else if (is_key(schema)) {
      return;  // read when its entry is entered
    } else if (schema != nullptr && is_on_the_way(mapping_.description(), direction::xo, schema, document_.modules())) {
      enter(node, schema);
    } else {
      if (schema != nullptr) {
        note_first(node, above, note_kind::unmapped, "is not mapped: no entry point serves it");
      } else {
        note_first(node, above, note_kind::unknown_node, not_known);
      }
    }
  }

  // An unmapped value ends the plug-in's walk: that leaf is hidden, with a note, and the rest walked again. After very
  // many of them, each of which costs a walk, the next one is an error.
  void translate_node(yfw_node_t &node, const entry_point &entry) {
    constexpr size_t most = 256;
    std::deque<hidden_node> unmapped;
    for (;;) {
      const uint32_t status = call_plugin(context_, mapping_, call_form::entry, entry.function, &node);
      const bool is_value = status == YMAP_ERR_INVALID_VALUE && unmapped.size() < most;
      yfw_node_t *leaf = is_value ? leaf_compared(node) : nullptr;
      if (leaf == nullptr) {
        report_outcome(node, status);
        return;
      }
      add_note(*leaf, note_kind::omitted_value, "is omitted: " + reason(status), {});
      context_.problems.clear();
      context_.kept.clear();
      unmapped.emplace_back(*leaf);
    }
  }

  // The leaf with a value that the plug-in was processing; null when it is not known.
  yfw_node_t *leaf_compared(yfw_node_t &node) {
    const yfw_node_t *found = node_compared(node, context_.compared);
    const bool is_leaf = found != nullptr && found->value != nullptr && *found->tag != '\0';
    return is_leaf ? const_cast<yfw_node_t *>(found) : nullptr;  // of the document, which is ours to change
  }

  // A plug-in ignores unknown tags silently, and compares tags without their namespace: an unknown node with a known
  // tag is hidden.
  void note_unknown(yfw_node_t &node, const lysc_node *above, std::deque<hidden_node> &unknown) {
    const lysc_node *schema = extra(node).schema;
    if (schema == nullptr) {
      note_first(node, above, note_kind::unknown_node, not_known);
      if (above != nullptr && is_name_below(above, node.tag)) {
        unknown.emplace_back(node);
      }
      return;
    }
    for (yfw_node_t &below : children(node)) {
      note_unknown(below, schema, unknown);
    }
  }

  bool is_name_below(const lysc_node *above, std::string_view tag) const {
    return std::ranges::any_of(document_.modules().children(above),
                               [&](const lysc_node *below) { return name(below) == tag; });
  }

  // Of the nodes with one schema path only the first gets the note.
  void note_first(const yfw_node_t &node, const lysc_node *above, note_kind kind, const char *text) {
    std::string schema_path = (above == nullptr ? std::string() : path(above)) + "/" + node.ns + ":" + node.tag;
    add_note(node, kind, text, std::move(schema_path));
  }

  void add_note(const yfw_node_t &node, note_kind kind, const std::string &text, std::string once) {
    if (!result_.notes.has(once)) {
      const char *value = node.value != nullptr ? node.value : "";
      result_.notes.add({{document_.where(node), kind, text, value}, std::move(once)});
    }
  }

  void enter(yfw_node_t &node, const lysc_node *schema) {
    const std::string schema_path = path(schema);
    const list_pair *pair = is_list(schema) ? mapping_.description().pair_of_low(schema_path) : nullptr;
    context_.record.current_list = nullptr;
    if (pair != nullptr && !enter_entry(node, *pair)) {
      return;
    }
    const open_node open(context_, node);
    for (yfw_node_t &below : children(node)) {
      place_node(below, schema);
    }
    if (pair != nullptr) {
      report_defaults(node, schema_path);
    }
  }

  // Makes the matching entry of the client model current. False when it is not wanted.
  bool enter_entry(const yfw_node_t &node, const list_pair &pair) {
    const yfw_node_t *key = child(node, pair.low_key);
    if (key == nullptr || key->value == nullptr) {
      throw error(document_.where(node), "list entry without its key '" + pair.low_key + "'");
    }
    const uint32_t status =
        builder_.enter_list(context_, &context_.record.current_list, pair.high, key->value, pair.high_key.c_str());
    if (status != YMAP_OK && status != YMAP_ERR_NO_MATCH) {
      throw error(document_.where(node), context_.failure);
    }
    return status == YMAP_OK;
  }

  void report_defaults(yfw_node_t &node, const std::string &at) {
    for (const default_function &defaults : mapping_.description().defaults) {
      if (defaults.dir != direction::xo || defaults.at != at) {
        continue;
      }
      context_.native_entry = &node;
      const uint32_t status = call_plugin(context_, mapping_, call_form::report_defaults, defaults.function, nullptr);
      context_.native_entry = nullptr;
      report_outcome(node, status);
    }
  }

  // Adds the reported problems as notes; throws `error` for a failure.
  void report_outcome(const yfw_node_t &node, uint32_t status) {
    if (status != YMAP_OK) {
      const yfw_node_t *source_node = node_compared(node, context_.compared);
      throw error(document_.where(source_node != nullptr ? *source_node : node), reason(status));
    }
    for (const reported_problem &problem : std::exchange(context_.problems, {})) {
      add_note(source_node_of(problem, node), note_kind::omitted_value, "is omitted: " + problem.text, {});
    }
    // Nothing is lost: of one leaf the first note is enough.
    for (const reported_problem &problem : std::exchange(context_.kept, {})) {
      const yfw_node_t &source_node = source_node_of(problem, node);
      add_note(source_node, note_kind::invalid_value, problem.text, path(extra(source_node).schema) + " is kept");
    }
  }

  static const yfw_node_t &source_node_of(const reported_problem &problem, const yfw_node_t &walked) {
    const yfw_node_t *inside = problem.inside != nullptr ? problem.inside : &walked;
    const yfw_node_t *source_node = node_compared(*inside, problem.compared);
    return source_node != nullptr ? *source_node : *inside;
  }

  std::string reason(uint32_t status) const {
    if (status == status_framework_failure && !context_.failure.empty()) {
      return context_.failure;
    }
    return context_.problems.empty() ? "rejected by the plug-in" : context_.problems.back().text;
  }

  const entry_point *entry_for(const lysc_node *above, const char *ns) const {
    const std::string at = above == nullptr ? "/" : path(above);
    for (const entry_point &entry : mapping_.description().entry_points) {
      if (entry.dir == direction::xo && entry.at == at && document_.modules().ns_of_module(entry.module) == ns) {
        return &entry;
      }
    }
    return nullptr;
  }

  document &document_;
  const plugin &mapping_;
  reply_part &result_;
  size_t level_ = 0;                                             // number of the current siblings
  std::unordered_map<const lysc_node *, size_t> last_level_of_;  // the last such number
  std::set<std::string> nested_;                                 // entries of this document that are in other ones
  data_builder builder_;
  context context_;
};

}  // namespace

void reply_notes::add(reply_note added) {
  if (!added.once.empty()) {
    once_.insert(added.once);
  }
  notes_.push_back(std::move(added));
}

void reply_notes::add(reply_notes part) {
  std::ranges::move(part.notes_, std::back_inserter(notes_));
}

std::vector<note> reply_notes::in_order() && {
  std::ranges::stable_sort(notes_, {}, [](const reply_note &added) {
    return std::pair(added.what.kind == note_kind::missing_entry, added.what.where.line);
  });
  std::vector<note> notes;
  std::unordered_set<std::string> once;
  for (auto &[what, once_for] : notes_) {
    const bool is_first = once_for.empty() || once.insert(once_for).second;
    if (is_first && (notes.empty() || notes.back() != what)) {
      notes.push_back(std::move(what));
    }
  }
  return notes;
}

void note_missing_entries(reply_part &part, const reply_options &options, const std::string &file) {
  for (const std::string &name : options.entries) {
    if (!part.met.contains(name)) {
      part.notes.add(
          {{place{file, 0, {}}, note_kind::missing_entry, "has no list entry " + in_quotes(name), name}, {}});
    }
  }
}

void translate_part(document &native, const plugin &mapping, const reply_options &options, trace_log &log,
                    reply_part &part) {
  reply_translation(native, mapping, options, log, part).run();
}

reply translate_reply(document &native, const plugin &mapping, const reply_options &options, trace_log &log) {
  reply_part whole{data_tree(native.modules()), {}, {}, {}};
  translate_part(native, mapping, options, log, whole);
  note_missing_entries(whole, options, native.file());
  return {std::move(whole.data), std::move(whole.notes).in_order()};
}

}  // namespace yfw
