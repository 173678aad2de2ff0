#include "coverage_page.hpp"
#include "coverage_reports.hpp"

namespace ymap {
namespace {

// JSON without "<", so that it contains neither "</script>" nor "<!--" within a script element.
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
  constexpr std::string_view placeholder = "@MEASUREMENT@";
  std::string page = coverage_page;
  return page.replace(page.find(placeholder), placeholder.size(), without_markup(coverage_as_json(view)));
}

}  // namespace ymap
