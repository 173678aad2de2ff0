#include "coverage_page.hpp"
#include "coverage_reports.hpp"

namespace ymap {
namespace {

// Within a script element of HTML, text must not hold "<": no "</script>" and no "<!--" can then be in it.
std::string without_markup(const std::string &json) {
  std::string text;
  for (const char c : json) {
    if (c == '<') {
      text += "\\u003c";
    } else {
      text += c;
    }
  }
  return text;
}

}  // namespace

std::string coverage_as_html(const coverage_view &view) {
  constexpr std::string_view hole = "@MEASUREMENT@";
  std::string page = coverage_page;
  return page.replace(page.find(hole), hole.size(), without_markup(coverage_as_json(view)));
}

}  // namespace ymap
