#include <rapidjson/document.h>

#include <algorithm>
#include <iterator>

#include "coverage_reports.hpp"
#include "input.hpp"
#include "yfw/error.hpp"

namespace ymap {
namespace {

using rapidjson::Value;
using yfw::mapping_state;

// A state, and its name in reports of version 1.
struct state_name {
  mapping_state state;
  std::string_view former;
};

constexpr state_name states[] = {{mapping_state::mapped, "mapped"},
                                 {mapping_state::multiple, "mapped-to-several"},
                                 {mapping_state::partial, "refused-value"},
                                 {mapping_state::rejected, "unmapped-with-error"},
                                 {mapping_state::unmapped, "unmapped-silently"},
                                 {mapping_state::not_probed, "not-probed"}};

std::string entry_name(bool is_client, std::string_view operation, const std::string &path) {
  return (is_client ? "" : "reply ") + std::string(operation) + " " + path;
}

// The strings with commas between.
template <typename strings_t>
std::string comma_list(const strings_t &strings) {
  std::string list;
  for (const auto &string : strings) {
    list.append(list.empty() ? "" : ", ").append(string);
  }
  return list;
}

bool is_mapped(std::string_view state) {
  return state == to_string(yfw::mapping_state::mapped) || state == to_string(yfw::mapping_state::multiple);
}

struct effect_text {
  std::string kind, path;
  std::optional<std::string> value;
};

void add_mapped_probe(coverage_entry &entry, const std::optional<std::string> &value,
                      const std::vector<effect_text> &effects) {
  if (value) {
    entry.accepted.insert(*value);
  }
  std::vector<std::string> results;
  for (const effect_text &effect : effects) {
    entry.paths.insert(effect.path);
    results.push_back(effect.kind + " " + effect.path + (effect.value ? " " + yfw::in_quotes(*effect.value) : ""));
  }
  entry.results[value.value_or("")] = comma_list(results);
}

// Reads a report as a baseline. Throws `yfw::error` for a report of another shape.
class baseline_reader {
 public:
  baseline_reader(const std::string &text, std::string file) : file_(std::move(file)) {
    document_.Parse(text.data(), text.size());
    if (document_.HasParseError()) {
      const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(document_.GetErrorOffset(), text.size()));
      const auto line = static_cast<unsigned>(1 + std::count(text.begin(), end, '\n'));
      throw yfw::error({file_, line, {}}, "invalid JSON, expected a report of 'ymap coverage --format json'");
    }
  }

  coverage_baseline read() {
    // RapidJSON's own comparisons with strings and numbers recurse endlessly in C++20.
    if (!document_.IsObject() || !document_.HasMember("format") || text(document_, "format") != "ymap-coverage") {
      fail("not a coverage report, expected one of 'ymap coverage --format json'");
    }
    const Value &version = member(document_, "version");
    if (!version.IsInt() || version.GetInt() < 1 || version.GetInt() > 2) {
      fail("unsupported version of the coverage report, expected 1 or 2");
    }
    version_ = version.GetInt();
    if (member(document_, "only-missing").IsTrue()) {
      fail("the report has only missing leaves; write it without --missing");
    }
    for (const bool is_client : {true, false}) {
      for (const Value &row : array(document_, !is_client ? "native" : version_ == 1 ? "high" : "client")) {
        read_row(row, is_client);
      }
    }
    return std::move(baseline_);
  }

 private:
  [[noreturn]] void fail(const std::string &text) const {
    throw yfw::error({file_, 0, {}}, text);
  }

  const Value &member(const Value &object, const char *name) const {
    if (object.IsObject()) {
      if (const auto found = object.FindMember(name); found != object.MemberEnd()) {
        return found->value;
      }
    }
    fail("incomplete coverage report: '" + std::string(name) + "' is missing");
  }

  Value::ConstArray array(const Value &object, const char *name) const {
    const Value &value = member(object, name);
    if (!value.IsArray()) {
      fail("invalid coverage report: '" + std::string(name) + "' is not an array");
    }
    return value.GetArray();
  }

  std::string text(const Value &object, const char *name) const {
    const Value &value = member(object, name);
    if (!value.IsString()) {
      fail("invalid coverage report: '" + std::string(name) + "' is not a string");
    }
    return {value.GetString(), value.GetStringLength()};
  }

  std::optional<std::string> text_if_any(const Value &object, const char *name) const {
    return object.HasMember(name) ? std::optional(text(object, name)) : std::nullopt;
  }

  std::string read_state(const Value &operation, const std::string &name) const {
    const std::string stated = text(operation, "state");
    std::vector<std::string> known;
    for (const state_name &each : states) {
      const std::string_view name_in_report = version_ == 1 ? each.former : to_string(each.state);
      if (name_in_report == stated) {
        return std::string(to_string(each.state));
      }
      known.push_back(yfw::in_quotes(name_in_report));
    }
    fail("invalid state " + yfw::in_quotes(stated) + " of '" + name + "', expected " + comma_list(known));
  }

  void read_probe(const Value &probe, coverage_entry &entry) const {
    if (!member(probe, "mapped").IsTrue()) {
      return;
    }
    std::vector<effect_text> effects;
    for (const Value &effect : array(probe, "effects")) {
      const std::string kind = text(effect, "kind");
      const bool is_former = version_ == 1 && kind == "withdraw";
      effects.push_back({is_former ? std::string(to_string(yfw::effect_kind::retract)) : kind, text(effect, "path"),
                         text_if_any(effect, "value")});
    }
    add_mapped_probe(entry, text_if_any(probe, "value"), effects);
  }

  void read_row(const Value &row, bool is_client) {
    const std::string path = text(row, "path");
    const Value &operations = member(row, "operations");
    if (!operations.IsObject()) {
      fail("invalid coverage report: 'operations' is not an object");
    }
    for (const auto &operation : operations.GetObject()) {
      const std::string name = entry_name(is_client, operation.name.GetString(), path);
      coverage_entry &entry = baseline_[name];
      entry.state = read_state(operation.value, name);
      entry.is_mapped = is_mapped(entry.state);
      for (const Value &reached : array(operation.value, "paths")) {
        if (!reached.IsString()) {
          fail("invalid coverage report: 'paths' of '" + name + "' contains an item that is not a string");
        }
        entry.paths.insert(reached.GetString());
      }
      for (const Value &probe : array(operation.value, "probes")) {
        read_probe(probe, entry);
      }
    }
  }

  std::string file_;
  int version_ = 0;
  rapidjson::Document document_;
  coverage_baseline baseline_;
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

void add_rows(coverage_baseline &baseline, const std::vector<yfw::coverage_row> &rows, bool is_client) {
  for (const yfw::coverage_row &row : rows) {
    for (const yfw::coverage_cell &cell : row.cells) {
      coverage_entry entry{cell.is_mapped(), std::string(to_string(cell.state)), {}, {}, {}};
      for (const yfw::leaf_probe &probe : cell.probes) {
        add_probe(entry, probe);
      }
      baseline.emplace(entry_name(is_client, to_string(cell.operation), yfw::qualified_path(row.leaf)),
                       std::move(entry));
    }
  }
}

// The strings of `all` that are not in `known`.
std::vector<std::string> difference(const std::set<std::string> &all, const std::set<std::string> &known) {
  std::vector<std::string> others;
  std::ranges::set_difference(all, known, std::back_inserter(others));
  return others;
}

std::string new_values(const std::set<std::string> &all, const std::set<std::string> &known) {
  std::vector<std::string> values = difference(all, known);
  std::ranges::transform(values, values.begin(), [](const std::string &value) { return yfw::in_quotes(value); });
  return comma_list(values);
}

// How an entry that was and is mapped differs: in its paths or, when these are the same, in the effects of values.
std::string changed_effects(const coverage_entry &older, const coverage_entry &newer) {
  if (older.state != newer.state && (older.paths.empty() || newer.paths.empty())) {
    return "";
  }
  const std::string left = comma_list(difference(older.paths, newer.paths));
  const std::string reached = comma_list(difference(newer.paths, older.paths));
  std::string text;
  text += left.empty() ? "" : ", no longer reaches " + left;
  text += reached.empty() ? "" : ", now reaches " + reached;
  if (!text.empty()) {
    return text;
  }
  for (const auto &[value, before] : older.results) {
    if (const auto now = newer.results.find(value); now != newer.results.end() && now->second != before) {
      text += (value.empty() ? ", now causes " : ", " + yfw::in_quotes(value) + " now causes ") + now->second +
              " instead of " + before;
    }
  }
  return text;
}

void compare_entry(const std::string &name, const coverage_entry &older, const coverage_entry &newer,
                   coverage_changes &changes) {
  // The sample values change with the range of a type; for mapped entries only the state counts.
  const bool still_whole = older.is_mapped && newer.is_mapped;
  const std::string lost = still_whole ? "" : new_values(older.accepted, newer.accepted);
  const std::string gained = still_whole ? "" : new_values(newer.accepted, older.accepted);
  const std::string effects = changed_effects(older, newer);
  if (older.state == newer.state && lost.empty() && gained.empty() && effects.empty()) {
    return;
  }
  std::string line = name + ": ";
  line += older.state == newer.state ? newer.state : older.state + " -> " + newer.state;
  line += lost.empty() ? "" : ", no longer accepts " + lost;
  line += gained.empty() ? "" : ", now accepts " + gained;
  changes.lines.push_back(escaped(line + effects));
  changes.lost = changes.lost || (older.is_mapped && !newer.is_mapped) || !lost.empty();
}

}  // namespace

coverage_baseline baseline_of(const yfw::coverage &measured) {
  coverage_baseline baseline;
  add_rows(baseline, measured.client, true);
  add_rows(baseline, measured.native, false);
  return baseline;
}

coverage_baseline read_baseline(const std::string &text, const std::string &file) {
  return baseline_reader(text, file).read();
}

coverage_changes compare(const coverage_baseline &older, const coverage_baseline &newer) {
  coverage_changes changes;
  for (const auto &[name, before] : older) {
    if (const auto now = newer.find(name); now != newer.end()) {
      compare_entry(name, before, now->second, changes);
    } else {
      changes.lines.push_back(escaped(name + ": " + before.state + " -> no longer in the modules"));
      changes.lost = changes.lost || before.is_mapped || !before.accepted.empty();
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
