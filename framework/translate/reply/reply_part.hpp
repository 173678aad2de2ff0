// The translation of one document that may be a part of a larger one.
#pragma once

#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "yfw/reply.hpp"

namespace yfw {

struct reply_note {
  note what;
  std::string once;  // of the notes with the same text here only the first is kept; empty: all are
};

// Notes of a document or of all its chunks.
class reply_notes {
 public:
  bool has(const std::string &once) const {
    return !once.empty() && once_.contains(once);
  }
  void add(reply_note added);
  void add(reply_notes part);
  // In the order of their lines, missing entries last; those of one line in the order in which they came. One that
  // repeats the last is dropped: a leaf is often reported in two places, config and state.
  std::vector<note> in_order() &&;

 private:
  std::vector<reply_note> notes_;
  std::unordered_set<std::string> once_;
};

// The data translated so far.
struct reply_part {
  data_tree data;
  reply_notes notes;
  std::set<std::string> met;      // the wanted entries that were found
  std::set<std::string> entries;  // list entries of the text, to reject one that is repeated
};

// `translate_reply` without the notes on missing entries, which the second function adds, to `part`.
void translate_part(document &native, const plugin &mapping, const reply_options &options, trace_log &log,
                    reply_part &part);
void note_missing_entries(reply_part &part, const reply_options &options, const std::string &file);

}  // namespace yfw
