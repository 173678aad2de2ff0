#include "yfw/reply_stream.hpp"

#include <algorithm>
#include <limits>
#include <ostream>
#include <sstream>
#include <thread>
#include <unordered_set>
#include <utility>

#include "ordered_work.hpp"
#include "reply_chunks.hpp"
#include "reply_index.hpp"
#include "reply_part.hpp"
#include "yfw/internal/call_tap.hpp"
#include "yfw/internal/temporary_file.hpp"
#include "yfw/node.hpp"
#include "yfw/plugin.hpp"
#include "yfw/trace.hpp"
#include "yfw/writer.hpp"

namespace yfw {
namespace {

// What a chunk becomes: lines around, which should be the same for all chunks, and the entries between them.
struct translated_chunk {
  bool is_empty = true;
  bool is_regular = true;  // holds nothing but entries of one list
  std::string before, entries, after;
  std::string_view separator;  // between entries
  std::vector<size_t> keys;    // of the entries, hashed
  reply_notes notes;
  std::set<std::string> met;
};

// The list whose entries are all that the tree holds, and how many containers are around it; null for other trees.
std::pair<const data_node *, size_t> only_list(const data_tree &tree) {
  size_t depth = 0;
  const data_node *node = tree.first();
  while (node != nullptr && node->next == nullptr && is_container(node->schema)) {
    node = node->first_child;
    ++depth;
  }
  const bool is_only = node != nullptr && node->next == nullptr && is_list(node->schema);
  return {is_only ? node : nullptr, depth};
}

size_t key_hash(const data_node &entry) {
  size_t hash = 0;
  for (const std::string_view key : keys(entry.schema)) {
    for (const data_node *leaf = entry.first_child; leaf != nullptr; leaf = leaf->next) {
      if (leaf->tag == key && leaf->value) {
        hash = hash * 31 + std::hash<std::string_view>()(*leaf->value);
      }
    }
  }
  return hash;
}

// Behind the first `count` lines.
size_t lines_end(std::string_view text, size_t count) {
  size_t at = 0;
  while (count-- > 0) {
    at = text.find('\n', at) + 1;
  }
  return at;
}

// The line feed before the last `count` lines.
size_t last_lines_begin(std::string_view text, size_t count) {
  size_t at = text.size() - 1;
  while (count-- > 0) {
    at = text.rfind('\n', at - 1);
  }
  return at;
}

// Whether the chunks stand for the whole: `out_of_order` when none has all of its entries, `not_splittable` when none
// can.
enum class chunks_end { good, out_of_order, not_splittable };

class reply_stream {
 public:
  reply_stream(text_source &native, const std::string &file, const schema &modules, const plugin &mapping,
               const stream_options &options, trace_log &log, std::ostream &out, const note_taker &take_notes)
      : source_(native, native_lists(mapping.description())),
        file_(file),
        modules_(modules),
        mapping_(mapping),
        options_(options),
        chunk_bytes_(std::max<size_t>(options.chunk_bytes, 1)),
        jobs_(options.jobs != 0 ? options.jobs : std::max(1U, std::thread::hardware_concurrency())),
        log_(log),
        out_(out),
        take_notes_(take_notes),
        around_{data_tree(modules), {}, {}, {}} {}

  void run() {
    const bool is_watched = log_.wants_short_form() || log_.wants_long_form() || installed_call_tap() != nullptr;
    chunks_end end = is_watched ? chunks_end::not_splittable : translate_in_order();
    if (end == chunks_end::out_of_order) {
      forget();
      end = translate_by_entry();
    }
    if (end != chunks_end::good) {
      forget();
      translate_whole(source_.whole());
    } else {
      finish();
    }
  }

 private:
  static std::vector<std::string> native_lists(const manifest &description) {
    std::vector<std::string> lists;
    for (const list_pair &pair : description.lists) {
      lists.push_back(pair.low);
    }
    return lists;
  }

  void translate_whole(std::string text) {
    document native = document::read(std::move(text), file_, modules_);
    const reply whole = translate_reply(native, mapping_, options_.reply, log_);
    std::ostringstream written;
    write(written, whole.data, options_.to.value_or(native.format()));
    take_notes_(whole.notes);
    put(written.view());
  }

  void put(std::string_view text) {
    if (!out_.write(text.data(), static_cast<std::streamsize>(text.size()))) {
      throw error("the output cannot be written");
    }
  }

  static void write(std::ostream &out, const data_tree &tree, data_format format) {
    if (format == data_format::json) {
      write_json(out, tree);
    } else {
      write_xml(out, tree, {.wrappers = {{"data", netconf_ns}}});
    }
  }

  // Translates the chunks as they come.
  chunks_end translate_in_order() {
    bool is_fit = true;
    const auto next_chunk = [&]() -> std::optional<whole_entries> {
      const std::optional<chunk> next = source_.next(chunk_bytes_);
      is_fit = !next || (!next->is_whole() && source_.is_good());
      if (!next || !is_fit) {
        return std::nullopt;
      }
      whole_entries entries{{}, no_limit};
      entries.documents.push_back({next->whole_text(), next->first_line});
      return entries;
    };
    const chunks_end end = translate_all(next_chunk);
    return is_fit ? end : chunks_end::not_splittable;
  }

  // Translates chunks that have all that the text tells of their entries.
  chunks_end translate_by_entry() {
    reply_index index(source_, mapping_.description().lists);
    if (!source_.is_good()) {
      return chunks_end::not_splittable;
    }
    const auto next_entries = [&] {
      return index.is_at_end() ? std::nullopt : std::optional(index.next(source_, chunk_bytes_));
    };
    return translate_all(next_entries) == chunks_end::good ? chunks_end::good : chunks_end::not_splittable;
  }

  static constexpr size_t no_limit = std::numeric_limits<size_t>::max();

  // Translates what `next` returns until it returns nothing or a result does not fit to the others.
  template <typename next_t>
  chunks_end translate_all(const next_t &next) {
    chunks_end end = chunks_end::good;
    ordered_work chunks(
        next, [this](whole_entries entries) { return translate(std::move(entries)); },
        [&](translated_chunk result) {
          end = add(std::move(result));
          return end == chunks_end::good;
        });
    chunks.run(jobs_);
    return end;
  }

  // Runs on several threads at once: all that is shared here is only read.
  translated_chunk translate(whole_entries entries) const {
    reply_part part{data_tree(modules_), {}, {}, {}};
    data_format format = data_format::xml;
    for (chunk_document &each : entries.documents) {
      document native = document::read(std::move(each.text), file_, modules_, {}, each.first_line);
      format = native.format();
      trace_log silent;
      translate_part(native, mapping_, options_.reply, silent, part);
    }
    translated_chunk result;
    result.notes = std::move(part.notes);
    result.met = std::move(part.met);
    result.is_empty = part.data.first() == nullptr;
    if (!result.is_empty) {
      take_apart(part.data, options_.to.value_or(format), result);
    }
    result.is_regular = result.is_regular && result.keys.size() <= entries.most;
    return result;
  }

  static void take_apart(const data_tree &tree, data_format format, translated_chunk &result) {
    const auto [list, depth] = only_list(tree);
    result.is_regular = list != nullptr;
    if (list == nullptr) {
      return;
    }
    for (const data_node *entry = list; entry != nullptr; entry = entry->next_entry) {
      result.keys.push_back(key_hash(*entry));
    }
    std::ostringstream stream;
    write(stream, tree, format);
    const std::string_view text = stream.view();
    const size_t around = depth + (format == data_format::json ? 2 : 1);  // the object and the array; the data element
    const size_t begin = lines_end(text, around);
    const size_t end = last_lines_begin(text, around);
    result.before = text.substr(0, begin);
    result.entries = text.substr(begin, end - begin);
    result.after = text.substr(end);
    result.separator = format == data_format::json ? ",\n" : "\n";
  }

  chunks_end add(translated_chunk next) {
    around_.notes.add(std::move(next.notes));
    around_.met.merge(next.met);
    if (next.is_empty) {
      return chunks_end::good;
    }
    const bool is_first = before_.empty();
    if (is_first) {
      before_ = next.before;
      after_ = next.after;
    }
    if (!next.is_regular || next.before != before_ || next.after != after_) {
      return chunks_end::not_splittable;
    }
    if (!std::ranges::all_of(next.keys, [&](size_t key) { return keys_.insert(key).second; })) {
      return chunks_end::out_of_order;
    }
    entries_->append(is_first ? next.before : next.separator);
    entries_->append(next.entries);
    return chunks_end::good;
  }

  // Drops what was translated so far, to begin again.
  void forget() {
    before_.clear();
    entries_.emplace();
    keys_.clear();
    around_ = {data_tree(modules_), {}, {}, {}};
  }

  void finish() {
    note_missing_entries(around_, options_.reply, file_);
    take_notes_(std::move(around_.notes).in_order());
    if (before_.empty()) {
      write(out_, data_tree(modules_), options_.to.value_or(source_.format()));
      return;
    }
    entries_->append(after_);
    entries_->read_all([&](std::string_view block) { put(block); });
  }

  chunk_reader source_;
  const std::string &file_;
  const schema &modules_;
  const plugin &mapping_;
  const stream_options &options_;
  size_t chunk_bytes_;
  unsigned jobs_;
  trace_log &log_;
  std::ostream &out_;
  const note_taker &take_notes_;

  std::string before_, after_;
  std::optional<temporary_file> entries_{std::in_place};
  std::unordered_set<size_t> keys_;
  reply_part around_;  // notes and names only
};

}  // namespace

void translate_reply_stream(text_source &native, const std::string &file, const schema &modules, const plugin &mapping,
                            const stream_options &options, trace_log &log, std::ostream &out,
                            const note_taker &take_notes) {
  reply_stream(native, file, modules, mapping, options, log, out, take_notes).run();
}

}  // namespace yfw
