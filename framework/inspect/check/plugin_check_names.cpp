#include "plugin_check_names.hpp"

#include <algorithm>

#include "yfw/error.hpp"
#include "yfw/schema.hpp"

namespace yfw {
namespace {

bool is_callback(mapping_kind kind) {
  return kind == mapping_kind::leaf || kind == mapping_kind::container || kind == mapping_kind::list ||
         kind == mapping_kind::hook;
}

std::string no_op_name(const std::string &name, const mapping_name &parts) {
  const std::string model = std::string(name.substr(0, 8)) + parts.plugin + '_' + parts.module;
  return model + "_duck_map_" + std::string(to_string(parts.kind));
}

// The last word of a squeezed path and what is before it.
std::pair<std::string, std::string> split(const std::string &path) {
  const size_t at = path.rfind('_');
  return at == std::string::npos ? std::pair(std::string(), path) : std::pair(path.substr(0, at), path.substr(at + 1));
}

// The zero-terminated names in a section of the library.
std::set<std::string> names_in(const elf_file &library, std::string_view section) {
  std::set<std::string> result;
  const elf_section *found = library.section(section);
  std::string_view rest = found != nullptr ? library.content(*found) : std::string_view();
  while (!rest.empty()) {
    const size_t end = std::min(rest.find('\0'), rest.size());
    result.emplace(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  result.erase("");
  return result;
}

}  // namespace

name_check::name_check(const elf_file &library, plugin_report &report)
    : report_(report), references_(library.references()), mentioned_(library.relocated_names()) {
  mentioned_.merge(names_in(library, "ymap.called"));
  for (elf_symbol &symbol : library.dynamic_symbols()) {
    if (symbol.is_defined) {
      const std::string name = symbol.name;
      symbols_.emplace(name, exported{std::move(symbol), parse_mapping_name(name)});
    }
  }
}

void name_check::run() {
  for (const named &each : symbols_) {
    check_symbol(each);
  }
}

void name_check::check_symbol(const named &each) {
  const auto &[name, what] = each;
  if (!what.parts) {
    report_.helpers.push_back(name);
    return;
  }
  checked_model &model = model_of(*what.parts);
  if (what.parts->is_body) {
    check_body(each);
  } else if (what.parts->kind == mapping_kind::entry) {
    model.entry_points.push_back(name);
  } else if (is_callback(what.parts->kind) && what.symbol.is_weak) {
    check_weak(each, model);
  } else if (is_callback(what.parts->kind) || what.parts->kind == mapping_kind::custom_leaf) {
    check_custom(each, model);
  }
}

void name_check::check_body(const named &each) {
  if (!symbols_.contains(each.first.substr(2))) {
    add(finding_level::error, "bodies", "generated body without its plain name; no walker reaches it", each.first);
  }
}

// A weak name is its generated body, or the no-op of its kind.
void name_check::check_weak(const named &each, checked_model &model) {
  const auto &[name, what] = each;
  const auto body = symbols_.find("__" + name);
  const auto no_op = symbols_.find(no_op_name(name, *what.parts));
  if (body != symbols_.end()) {
    ++model.generated;
    if (body->second.symbol.address != what.symbol.address) {
      add(finding_level::error, "weak names", "weak, but not an alias of its generated body", name);
    }
  } else {
    ++model.unmapped;
    if (no_op == symbols_.end() || no_op->second.symbol.address != what.symbol.address) {
      add(finding_level::warning, "weak names",
          "weak, but an alias of neither a generated body nor the no-op of its kind", name);
    }
  }
}

void name_check::check_custom(const named &each, checked_model &model) {
  const auto &[name, what] = each;
  if (!is_called(each)) {
    warn_of_unreachable(each, model);
  } else if (symbols_.contains("__" + name)) {
    model.overrides.push_back(name);
  } else {
    model.custom.push_back(name);
  }
}

void name_check::warn_of_unreachable(const named &each, checked_model &model) {
  const auto &[name, what] = each;
  model.unreachable.push_back(name);
  if (what.parts->kind == mapping_kind::custom_leaf) {
    add(finding_level::warning, "overrides", "unreachable: no leaf calls it", name);
    return;
  }
  const std::string likely = likely_override_of(*what.parts);
  if (likely.empty()) {
    add(finding_level::warning, "overrides", "unreachable: no walker calls it", name);
  } else {
    add(finding_level::error, "overrides",
        "unreachable: no walker calls it, the generated function runs; did you mean " + in_quotes(likely) + "?", name);
  }
}

// The weak name that the function was probably meant to override, "" if none is similar: another spelling of the last
// word or of the words before it, another kind, or another model.
std::string name_check::likely_override_of(const mapping_name &parts) const {
  const auto [above, last] = split(parts.path);
  std::map<std::string, std::string, std::less<>> by_last, by_above;  // the other part, and the whole name
  std::string elsewhere;
  for (const auto &[name, what] : symbols_) {
    if (!what.parts || !what.symbol.is_weak || what.parts->is_body || what.parts->dir != parts.dir) {
      continue;
    }
    const bool is_model = what.parts->plugin == parts.plugin && what.parts->module == parts.module;
    const auto [other_above, other_last] = split(what.parts->path);
    if (is_model && what.parts->kind == parts.kind && other_above == above) {
      by_last[other_last] = name;
    } else if (is_model && what.parts->kind == parts.kind && other_last == last) {
      by_above[other_above] = name;
    } else if (what.parts->path == parts.path && (is_model || what.parts->kind == parts.kind)) {
      elsewhere = name;
    }
  }
  const auto nearest = [](const auto &names, const std::string &wanted) {
    std::vector<std::string_view> known;
    known.reserve(names.size());
    for (const auto &[text, name] : names) {
      known.emplace_back(text);
    }
    const std::string_view found = closest(known, wanted);
    return found.empty() ? std::string() : names.find(found)->second;
  };
  const std::string same_place = nearest(by_last, last);
  const std::string same_word = same_place.empty() ? nearest(by_above, above) : same_place;
  return same_word.empty() ? elsewhere : same_word;
}

// References in the function itself do not count: code of a sanitizer has one.
bool name_check::is_called(const named &each) const {
  const elf_symbol &symbol = each.second.symbol;
  const auto [begin, end] = references_.equal_range(symbol.address);
  const bool is_referenced = std::any_of(begin, end, [&](const auto &reference) {
    return reference.second < symbol.address || reference.second >= symbol.address + symbol.size;
  });
  return is_referenced || mentioned_.contains(each.first);
}

checked_model &name_check::model_of(const mapping_name &parts) {
  const auto is_it = [&](const checked_model &model) {
    return model.dir == parts.dir && model.plugin == parts.plugin && model.module == parts.module;
  };
  const auto found = std::ranges::find_if(report_.models, is_it);
  if (found != report_.models.end()) {
    return *found;
  }
  report_.models.push_back({parts.dir, parts.plugin, parts.module, {}, {}, {}, {}});
  return report_.models.back();
}

void name_check::add(finding_level level, const char *check, const std::string &message, const std::string &name) {
  report_.findings.push_back({level, check, message, name});
}

}  // namespace yfw
