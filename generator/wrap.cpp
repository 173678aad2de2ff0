#include "wrap.hpp"

#include <algorithm>
#include <utility>
#include <vector>

namespace ymapgen {
namespace {

// How the next line begins: as the line does, further right, or below the first argument.
enum class break_kind { unindented, indented, aligned };

// A place where a line may be broken.
struct break_point {
  std::size_t offset;  // of the text behind it
  break_kind kind;
  unsigned long cost;
};

struct layout {
  std::string text;
  unsigned long cost = 0;
};

constexpr std::size_t continuation = 4;
constexpr unsigned long column_cost = 1'000'000;
constexpr unsigned long never = 1'000 * column_cost;

bool is_definition(std::string_view line) {
  return line.front() != ' ' && line.ends_with(") {");
}

// The offset of the quote that ends the literal at `offset`, or of the line's end.
std::size_t literal_end(std::string_view line, std::size_t offset) {
  do {
    offset += line[offset] == '\\' ? 2 : 1;
  } while (offset < line.size() && line[offset] != '"');
  return offset;
}

bool is_declaration(std::string_view line) {
  return line.front() != ' ' && line.ends_with(';') && line.find('(') == std::string_view::npos;
}

// In the order of their offsets.
std::vector<break_point> break_points(std::string_view line) {
  if (is_declaration(line)) {
    return {{line.rfind(' ') + 1, break_kind::indented, 22}};
  }
  const bool defines = is_definition(line);
  std::vector<break_point> points;
  if (defines) {
    points.push_back({line.rfind(' ', line.find('(')) + 1, break_kind::unindented, 220});
  }
  unsigned depth = 0;
  for (std::size_t at = 0; at < line.size(); ++at) {
    const std::string_view rest = line.substr(at);
    if (rest.front() == '"') {
      at = literal_end(line, at);
    } else if (rest.front() == ')') {
      --depth;
    } else if (rest.front() == '(' && depth++ == 0) {
      const bool is_condition = at == 0 || line[at - 1] == ' ';
      points.push_back({at + 1, break_kind::indented, is_condition ? never : defines ? 140 : 41});
    } else if (depth == 0 && rest.starts_with(" = ")) {
      points.push_back({at + 3, break_kind::indented, 22});
    } else if (depth == 1 && rest.starts_with(", ")) {
      points.push_back({at + 2, break_kind::aligned, 41});
    } else if (depth == 1 && rest.starts_with(" && ")) {
      points.push_back({at + 4, break_kind::aligned, 45});
    }
  }
  return points;
}

// Lays out one line, piece by piece.
class line_layout {
 public:
  explicit line_layout(std::string_view line) : line_(line), base_(line.find_first_not_of(' ')) {}

  // Appends what stands before the point, then breaks the line there or not.
  void pass(const break_point &point, bool is_broken) {
    append_until(point.offset);
    if (point.kind != break_kind::aligned) {
      base_ += is_broken && point.kind != break_kind::unindented ? continuation : 0;
      aligned_ = is_broken ? base_ : column_;
    }
    if (is_broken) {
      result_.cost += point.cost;
      break_line(aligned_);
    }
  }

  layout finish() {
    append_until(line_.size());
    end_line();
    return std::move(result_);
  }

 private:
  void append_until(std::size_t offset) {
    result_.text += line_.substr(begin_, offset - begin_);
    column_ += offset - begin_;
    begin_ = offset;
  }

  void end_line() {
    if (result_.text.ends_with(' ')) {
      result_.text.pop_back();
      --column_;
    }
    result_.cost += column_ > line_width ? (column_ - line_width) * column_cost : 0;
  }

  void break_line(std::size_t indent) {
    end_line();
    result_.text += '\n' + std::string(indent, ' ');
    column_ = indent;
  }

  std::string_view line_;
  std::size_t begin_ = 0;  // of what is not laid out yet
  std::size_t column_ = 0;
  std::size_t base_;         // what a continuation is indented from
  std::size_t aligned_ = 0;  // where a line begins that is broken at the next point
  layout result_;
};

layout laid_out(std::string_view line, const std::vector<break_point> &points, unsigned long choice) {
  line_layout result(line);
  for (std::size_t i = 0; i < points.size(); ++i) {
    result.pass(points[i], (choice >> (points.size() - 1 - i) & 1) != 0);
  }
  return result.finish();
}

// One bit of a choice for each break point, the first one the highest: of equal costs the lowest choice wins.
std::string wrapped_line(std::string_view line) {
  const std::vector<break_point> points = break_points(line);
  layout best = laid_out(line, points, 0);
  for (unsigned long choice = 1; choice < 1UL << points.size(); ++choice) {
    layout next = laid_out(line, points, choice);
    if (next.cost < best.cost) {
      best = std::move(next);
    }
  }
  return std::move(best.text);
}

}  // namespace

std::string wrapped(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    result += line.size() > line_width && !line.starts_with("//") ? wrapped_line(line) : std::string(line);
    result += line.size() < text.size() ? "\n" : "";
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
  return result;
}

}  // namespace ymapgen
