// The lines below `nodes`: one node each.
#include "row.hpp"

#include <algorithm>
#include <array>
#include <regex>

namespace ymapgen {
namespace {

// An action, the number of paths behind it, and whether a translator may follow them.
struct action_rule {
  const char *word;
  ymapgen::action action;
  std::size_t path_count;
  bool has_translator;
};

constexpr std::array<action_rule, 10> action_rules{{
    {"walk", action::walk, 0, false},
    {"by-hand", action::by_hand, 0, false},
    {"ignore", action::ignore, 0, false},
    {"absent", action::absent, 0, false},
    {"add", action::add, 1, false},
    {"report", action::report, 2, true},
    {"manual", action::manual, 0, false},
    {"set", action::set, 1, true},
    {"read", action::read, 1, false},
    {"unmapped", action::unmapped, 0, false},
}};

const action_rule &rule_of(const std::string &word, const place &at) {
  const auto *rule = std::find_if(action_rules.begin(), action_rules.end(),
                                  [&word](const action_rule &candidate) { return word == candidate.word; });
  if (rule == action_rules.end()) {
    throw error(at, "'" + word +
                        "' is not an action: one of walk, by-hand, ignore, absent, add, report, manual, set, " +
                        "read, unmapped");
  }
  return *rule;
}

// Takes one option and returns whether `word` was one.
bool take_option(row &result, const std::string &word) {
  if (word == "when=10") {
    result.is_read_all = true;
  } else if (word == "twice" && result.action == action::read) {
    result.is_twice = true;
  } else if (word == "replaced") {
    result.is_replaced = true;
  } else if (word == "augments=by-hand") {
    result.has_hook_by_hand = true;
  } else {
    return false;
  }
  return true;
}

}  // namespace

void expect_c_name(const std::string &name, const place &at) {
  static const std::regex c_name("[A-Za-z_][A-Za-z0-9_]*");
  if (!std::regex_match(name, c_name)) {
    throw error(at, "'" + name + "' is not a C name: letters, digits and underscores");
  }
}

row parse_row(const std::vector<std::string> &words, const place &at) {
  row result;
  result.at = at;
  result.name = words[0];
  if (words.size() < 2) {
    throw error(at, "'" + words[0] + "' has no action");
  }
  const action_rule &rule = rule_of(words[1], at);
  result.action = rule.action;
  result.action_word = rule.word;
  std::size_t next = 2;
  for (; next < words.size() && words[next].front() == '/'; ++next) {
    result.paths.push_back(words[next]);
  }
  if (result.paths.size() != rule.path_count) {
    throw error(at, "'" + words[1] + "' takes " + std::to_string(rule.path_count) + " absolute paths, not " +
                        std::to_string(result.paths.size()));
  }
  for (; next < words.size(); ++next) {
    if (words[next] == "via" && rule.has_translator && result.translator.empty() && next + 1 < words.size()) {
      result.translator = words[++next];
      expect_c_name(result.translator, at);
    } else if (!take_option(result, words[next])) {
      throw error(at, "'" + words[next] + "' is not an option of '" + words[1] + "'");
    }
  }
  return result;
}

}  // namespace ymapgen
