#include <rapidjson/document.h>

#include <algorithm>
#include <array>

#include "coverage_reports.hpp"
#include "input.hpp"
#include "yfw/error.hpp"

namespace ymap {
namespace {

using rapidjson::Value;
using yfw::mapping_state;

constexpr std::array all_states{mapping_state::mapped,
                                mapping_state::mapped_to_several,
                                mapping_state::refused_value,
                                mapping_state::unmapped_with_error,
                                mapping_state::unmapped_silently,
                                mapping_state::not_probed};

std::string entry_name(bool is_high, std::string_view operation, const std::string &path) {
  return (is_high ? "" : "reply ") + std::string(operation) + " " + path;
}

// The texts with commas between.
template <typename texts_t>
std::string listed(const texts_t &texts) {
  std::string list;
  for (const auto &text : texts) {
    list.append(list.empty() ? "" : ", ").append(text);
  }
  return list;
}

bool is_mapped(std::string_view state) {
  return state == to_string(yfw::mapping_state::mapped) || state == to_string(yfw::mapping_state::mapped_to_several);
}

struct effect_text {
  std::string kind, path;
  std::optional<std::string> value;
};

void add_mapped_probe(coverage_entry &entry, const std::optional<std::string> &value,
                      const std::vector<effect_text> &effects) {
  if (value) {
    entry.taken.insert(*value);
  }
  std::vector<std::string> results;
  for (const effect_text &effect : effects) {
    entry.paths.insert(effect.path);
    results.push_back(effect.kind + " " + effect.path + (effect.value ? " " + yfw::in_quotes(*effect.value) : ""));
  }
  entry.results[value.value_or("")] = listed(results);
}

// Walks an older report; whatever has not the expected shape makes it refuse the whole.
class ledger_reader {
 public:
  ledger_reader(const std::string &text, std::string file) : file_(std::move(file)) {
    document_.Parse(text.data(), text.size());
    if (document_.HasParseError()) {
      const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(document_.GetErrorOffset(), text.size()));
      const auto line = static_cast<unsigned>(1 + std::count(text.begin(), end, '\n'));
      throw yfw::error({file_, line, {}}, "is not JSON, which 'ymap coverage --format json' writes");
    }
  }

  coverage_ledger read() {
    // RapidJSON's own comparisons with texts and numbers call themselves in C++20.
    if (!document_.IsObject() || !document_.HasMember("format") || text(document_, "format") != "ymap-coverage") {
      refuse("is not a coverage report, which 'ymap coverage --format json' writes");
    }
    const Value &version = member(document_, "version");
    if (!version.IsInt() || version.GetInt() != 1) {
      refuse("is a coverage report of another version than 1");
    }
    if (member(document_, "only-missing").IsTrue()) {
      refuse("holds only what was missing; write it without --missing");
    }
    for (const bool is_high : {true, false}) {
      for (const Value &row : array(document_, is_high ? "high" : "native")) {
        read_row(row, is_high);
      }
    }
    return std::move(ledger_);
  }

 private:
  [[noreturn]] void refuse(const std::string &text) const {
    throw yfw::error({file_, 0, {}}, text);
  }

  const Value &member(const Value &object, const char *name) const {
    if (object.IsObject()) {
      if (const auto found = object.FindMember(name); found != object.MemberEnd()) {
        return found->value;
      }
    }
    refuse("is not a whole coverage report: '" + std::string(name) + "' is missing");
  }

  Value::ConstArray array(const Value &object, const char *name) const {
    const Value &value = member(object, name);
    if (!value.IsArray()) {
      refuse("is not a coverage report: '" + std::string(name) + "' is not an array");
    }
    return value.GetArray();
  }

  std::string text(const Value &object, const char *name) const {
    const Value &value = member(object, name);
    if (!value.IsString()) {
      refuse("is not a coverage report: '" + std::string(name) + "' is not a text");
    }
    return {value.GetString(), value.GetStringLength()};
  }

  std::optional<std::string> text_if_any(const Value &object, const char *name) const {
    return object.HasMember(name) ? std::optional(text(object, name)) : std::nullopt;
  }

  std::string read_state(const Value &operation, const std::string &name) const {
    std::string stated = text(operation, "state");
    std::vector<std::string> known;
    std::ranges::transform(all_states, std::back_inserter(known),
                           [](mapping_state each) { return yfw::in_quotes(to_string(each)); });
    if (std::ranges::none_of(all_states, [&](mapping_state each) { return to_string(each) == stated; })) {
      refuse("is not a coverage report: " + yfw::in_quotes(stated) + " of '" + name + "' is not a state, which are " +
             listed(known));
    }
    return stated;
  }

  void read_probe(const Value &probe, coverage_entry &entry) const {
    if (!member(probe, "mapped").IsTrue()) {
      return;
    }
    std::vector<effect_text> effects;
    for (const Value &effect : array(probe, "effects")) {
      effects.push_back({text(effect, "kind"), text(effect, "path"), text_if_any(effect, "value")});
    }
    add_mapped_probe(entry, text_if_any(probe, "value"), effects);
  }

  void read_row(const Value &row, bool is_high) {
    const std::string path = text(row, "path");
    const Value &operations = member(row, "operations");
    if (!operations.IsObject()) {
      refuse("is not a coverage report: 'operations' is not an object");
    }
    for (const auto &operation : operations.GetObject()) {
      const std::string name = entry_name(is_high, operation.name.GetString(), path);
      coverage_entry &entry = ledger_[name];
      entry.state = read_state(operation.value, name);
      entry.is_mapped = is_mapped(entry.state);
      for (const Value &reached : array(operation.value, "paths")) {
        if (!reached.IsString()) {
          refuse("is not a coverage report: 'paths' of '" + name + "' holds what is not a text");
        }
        entry.paths.insert(reached.GetString());
      }
      for (const Value &probe : array(operation.value, "probes")) {
        read_probe(probe, entry);
      }
    }
  }

  std::string file_;
  rapidjson::Document document_;
  coverage_ledger ledger_;
};

void add_probe(coverage_entry &entry, const yfw::leaf_probe &probe) {
  std::vector<effect_text> effects;
  for (const yfw::probe_effect &effect : probe.effects) {
    effects.push_back({std::string(to_string(effect.kind)), yfw::qualified_path(effect.node), effect.value});
  }
  if (probe.is_mapped()) {
    add_mapped_probe(entry, probe.value, effects);
  }
}

void add_rows(coverage_ledger &ledger, const std::vector<yfw::coverage_row> &rows, bool is_high) {
  for (const yfw::coverage_row &row : rows) {
    for (const yfw::coverage_cell &cell : row.cells) {
      coverage_entry entry{cell.is_mapped(), std::string(to_string(cell.state)), {}, {}, {}};
      for (const yfw::leaf_probe &probe : cell.probes) {
        add_probe(entry, probe);
      }
      ledger.emplace(entry_name(is_high, to_string(cell.operation), yfw::qualified_path(row.leaf)), std::move(entry));
    }
  }
}

// Those of `all` that are not in `known`.
std::vector<std::string> beside(const std::set<std::string> &all, const std::set<std::string> &known) {
  std::vector<std::string> others;
  std::ranges::set_difference(all, known, std::back_inserter(others));
  return others;
}

std::string new_values(const std::set<std::string> &all, const std::set<std::string> &known) {
  std::vector<std::string> values = beside(all, known);
  std::ranges::transform(values, values.begin(), [](const std::string &value) { return yfw::in_quotes(value); });
  return listed(values);
}

// How what was mapped before and still is differs: by the paths that are reached or, when these are the same, by what
// values become there.
std::string otherwise_mapped(const coverage_entry &older, const coverage_entry &newer) {
  if (older.state != newer.state && (older.paths.empty() || newer.paths.empty())) {
    return "";
  }
  const std::string left = listed(beside(older.paths, newer.paths));
  const std::string reached = listed(beside(newer.paths, older.paths));
  std::string text;
  text += left.empty() ? "" : ", no longer reaches " + left;
  text += reached.empty() ? "" : ", now reaches " + reached;
  if (!text.empty()) {
    return text;
  }
  for (const auto &[value, before] : older.results) {
    if (const auto now = newer.results.find(value); now != newer.results.end() && now->second != before) {
      text += (value.empty() ? ", now does " : ", " + yfw::in_quotes(value) + " now does ") + now->second +
              " in place of " + before;
    }
  }
  return text;
}

void compare_entry(const std::string &name, const coverage_entry &older, const coverage_entry &newer,
                   coverage_changes &changes) {
  // The samples of a type may change with its range; what counts of values is then told by the state.
  const bool still_whole = older.is_mapped && newer.is_mapped;
  const std::string lost = still_whole ? "" : new_values(older.taken, newer.taken);
  const std::string gained = still_whole ? "" : new_values(newer.taken, older.taken);
  const std::string otherwise = otherwise_mapped(older, newer);
  if (older.state == newer.state && lost.empty() && gained.empty() && otherwise.empty()) {
    return;
  }
  std::string line = name + ": ";
  line += older.state == newer.state ? newer.state : older.state + " -> " + newer.state;
  line += lost.empty() ? "" : ", no longer takes " + lost;
  line += gained.empty() ? "" : ", now takes " + gained;
  changes.lines.push_back(escaped(line + otherwise));
  changes.lost = changes.lost || (older.is_mapped && !newer.is_mapped) || !lost.empty();
}

}  // namespace

coverage_ledger ledger_of(const yfw::coverage &measured) {
  coverage_ledger ledger;
  add_rows(ledger, measured.high, true);
  add_rows(ledger, measured.native, false);
  return ledger;
}

coverage_ledger read_ledger(const std::string &text, const std::string &file) {
  return ledger_reader(text, file).read();
}

coverage_changes compare(const coverage_ledger &older, const coverage_ledger &newer) {
  coverage_changes changes;
  for (const auto &[name, before] : older) {
    if (const auto now = newer.find(name); now != newer.end()) {
      compare_entry(name, before, now->second, changes);
    } else {
      changes.lines.push_back(escaped(name + ": " + before.state + " -> no longer in the modules"));
      changes.lost = changes.lost || before.is_mapped || !before.taken.empty();
    }
  }
  for (const auto &[name, now] : newer) {
    if (!older.contains(name)) {
      changes.lines.push_back(name + ": new, " + now.state);
    }
  }
  return changes;
}

}  // namespace ymap
