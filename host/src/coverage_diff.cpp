#include <rapidjson/document.h>

#include <algorithm>

#include "coverage_reports.hpp"
#include "yfw/error.hpp"

namespace ymap {
namespace {

using rapidjson::Value;

std::string entry_name(bool is_high, std::string_view operation, const std::string &path) {
  return (is_high ? "" : "reply ") + std::string(operation) + " " + path;
}

bool is_mapped(std::string_view state) {
  return state == word(yfw::mapping_state::mapped) || state == word(yfw::mapping_state::mapped_to_several);
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

  void read_row(const Value &row, bool is_high) {
    const std::string path = text(row, "path");
    const Value &operations = member(row, "operations");
    if (!operations.IsObject()) {
      refuse("is not a coverage report: 'operations' is not an object");
    }
    for (const auto &operation : operations.GetObject()) {
      coverage_entry &entry = ledger_[entry_name(is_high, operation.name.GetString(), path)];
      entry.state = text(operation.value, "state");
      entry.is_mapped = is_mapped(entry.state);
      for (const Value &probe : array(operation.value, "probes")) {
        if (member(probe, "mapped").IsTrue() && probe.HasMember("value")) {
          entry.taken.insert(text(probe, "value"));
        }
      }
    }
  }

  std::string file_;
  rapidjson::Document document_;
  coverage_ledger ledger_;
};

void add_rows(coverage_ledger &ledger, const std::vector<yfw::coverage_row> &rows, bool is_high) {
  for (const yfw::coverage_row &row : rows) {
    for (const yfw::coverage_cell &cell : row.cells) {
      coverage_entry entry{cell.is_mapped(), std::string(word(cell.state)), {}};
      for (const yfw::leaf_probe &probe : cell.probes) {
        if (probe.is_mapped() && probe.value) {
          entry.taken.insert(*probe.value);
        }
      }
      ledger.emplace(entry_name(is_high, word(cell.operation), yfw::qualified_path(row.leaf)), std::move(entry));
    }
  }
}

// The values of `all` that are not in `known`, in quotes.
std::string new_values(const std::set<std::string> &all, const std::set<std::string> &known) {
  std::string text;
  for (const std::string &value : all) {
    if (!known.contains(value)) {
      text += (text.empty() ? "" : ", ") + yfw::quoted(value);
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
  if (older.state == newer.state && lost.empty() && gained.empty()) {
    return;
  }
  std::string line = name + ": ";
  line += older.state == newer.state ? newer.state : older.state + " -> " + newer.state;
  line += lost.empty() ? "" : ", no longer takes " + lost;
  line += gained.empty() ? "" : ", now takes " + gained;
  changes.lines.push_back(line);
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
      changes.lines.push_back(name + ": " + before.state + " -> no longer in the modules");
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
