// Which action fits which node.
#include "fit.hpp"

#include <algorithm>
#include <array>

namespace ymapgen {
namespace {

struct fit {
  const char *word;
  ymapgen::action action;
  bool inner;  // containers and lists
  bool leaf;
  bool xo;
  bool ox;
};

constexpr std::array<fit, 10> fits{{
    {"walk", action::walk, true, false, true, true},
    {"by-hand", action::by_hand, true, true, true, true},
    {"ignore", action::ignore, false, true, true, true},
    {"absent", action::absent, true, true, true, true},
    {"add", action::add, false, true, true, false},
    {"report", action::report, false, true, true, false},
    {"manual", action::manual, false, true, true, true},
    {"set", action::set, false, true, false, true},
    {"read", action::read, false, true, false, true},
    {"unmapped", action::unmapped, false, true, false, true},
}};

bool does_fit(const fit &candidate, const node &what, direction which) {
  return (what.kind == node_kind::leaf ? candidate.leaf : candidate.inner) &&
         (which == direction::xo ? candidate.xo : candidate.ox);
}

// "walk, by-hand, absent"
std::string words_that_fit(const node &what, direction which) {
  std::string words;
  for (const fit &candidate : fits) {
    if (does_fit(candidate, what, which)) {
      words += (words.empty() ? "" : ", ") + std::string(candidate.word);
    }
  }
  return words;
}

const char *word_of(node_kind kind) {
  switch (kind) {
    case node_kind::container:
      return "container";
    case node_kind::list:
      return "list";
    case node_kind::leaf:
      break;
  }
  return "leaf";
}

// Whether the action gives the leaf a generated body of its own, which a hand-written one can replace.
bool has_body(action which) {
  return which == action::add || which == action::report || which == action::manual || which == action::set ||
         which == action::read || which == action::unmapped;
}

}  // namespace

void expect_fit(const row &line, const node &what, direction which) {
  const auto *chosen =
      std::find_if(fits.begin(), fits.end(), [&line](const fit &rule) { return rule.action == line.action; });
  if (!does_fit(*chosen, what, which)) {
    throw error(line.at, "'" + std::string(chosen->word) + "' does not fit the " + word_of(what.kind) + " '" +
                             what.path + "' in direction " + word_of(which) + ": one of " +
                             words_that_fit(what, which));
  }
  if (what.kind == node_kind::list && which == direction::ox) {
    throw error(line.at, "'" + what.path + "' is a list: requests are walked through containers only");
  }
  if (line.action == action::set && !what.is_config) {
    throw error(line.at, "'set' does not fit '" + what.path + "', which is config false: write 'read'");
  }
  if (line.is_replaced && !has_body(line.action)) {
    throw error(line.at, "'replaced' does not fit '" + line.name + "', which has no generated body: write 'by-hand'");
  }
  if (line.has_hook_by_hand && (what.kind == node_kind::leaf || line.action == action::absent)) {
    throw error(line.at, "'augments=by-hand' does not fit '" + line.name + "': it is for containers and lists");
  }
}

}  // namespace ymapgen
