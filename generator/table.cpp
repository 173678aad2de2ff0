#include "table.hpp"

#include "row.hpp"

#include <algorithm>
#include <fstream>
#include <regex>
#include <sstream>
#include <utility>

namespace ymapgen {
namespace {

struct line {
  place at;
  std::size_t indent = 0;  // blanks before the first word
  std::vector<std::string> words;
};

constexpr std::size_t longest_line = 4096;
constexpr std::size_t deepest_level = 128;

// Refuses what no table needs, so that messages can show any word of it.
void check_text(const std::string &text, const place &at) {
  if (text.size() > longest_line) {
    throw error(at, "the line is longer than " + std::to_string(longest_line) + " characters");
  }
  if (text.find('\t') != std::string::npos) {
    throw error(at, "a tab in the line: use blanks");
  }
  if (std::any_of(text.begin(), text.end(), [](unsigned char c) { return c < ' ' && c != '\r'; })) {
    throw error(at, "a control character in the line");
  }
}

// The lines that say something: comments and blank lines left out.
std::vector<line> read_lines(std::istream &input, const std::string &file) {
  std::vector<line> lines;
  std::string text;
  for (unsigned number = 1; std::getline(input, text); ++number) {
    line next{{file, number}, text.find_first_not_of(' '), {}};
    check_text(text, next.at);
    std::istringstream words(text);
    for (std::string word; words >> word && word.front() != '#';) {
      next.words.push_back(word);
    }
    if (!next.words.empty()) {
      lines.push_back(next);
    }
  }
  return lines;
}

// The values of a head line, of which there must be `count`.
void expect_values(const line &head, std::size_t count, const char *usage) {
  if (head.words.size() != count + 1) {
    throw error(head.at, "'" + head.words[0] + "' has the wrong number of values: write '" + usage + "'");
  }
}

direction parse_direction(const line &head) {
  expect_values(head, 1, "direction xo|ox");
  if (head.words[1] != "xo" && head.words[1] != "ox") {
    throw error(head.at, "'" + head.words[1] + "' is not a direction: xo or ox");
  }
  return head.words[1] == "xo" ? direction::xo : direction::ox;
}

target parse_target(const line &head) {
  expect_values(head, 2, "target MODULE flag=0|1");
  if (head.words[2] != "flag=0" && head.words[2] != "flag=1") {
    throw error(head.at, "'" + head.words[2] + "' is not a flag: flag=0 or flag=1");
  }
  return {head.at, head.words[1], head.words[2] == "flag=1" ? 1U : 0U};
}

std::string parse_c_name(const line &head, const char *usage) {
  expect_values(head, 1, usage);
  expect_c_name(head.words[1], head.at);
  return head.words[1];
}

void expect_header_name(const std::string &name, const place &at) {
  static const std::regex header_name("[A-Za-z0-9_./-]+");
  if (!std::regex_match(name, header_name)) {
    throw error(at, "'" + name + "' is not a name of a header: letters, digits, '_', '-', '.' and '/'");
  }
}

void parse_head(table &result, const line &head) {
  const std::string &keyword = head.words[0];
  if (keyword == "plug-in") {
    result.plug_in = parse_c_name(head, "plug-in NAME");
  } else if (keyword == "module") {
    expect_values(head, 1, "module NAME");
    result.module = head.words[1];
    result.module_at = head.at;
  } else if (keyword == "direction") {
    result.direction = parse_direction(head);
  } else if (keyword == "include") {
    expect_values(head, 1, "include HEADER");
    expect_header_name(head.words[1], head.at);
    result.includes.push_back(head.words[1]);
  } else if (keyword == "target") {
    result.targets.push_back(parse_target(head));
  } else if (keyword == "wanted") {
    result.wanted = parse_c_name(head, "wanted FUNCTION");
  } else {
    throw error(head.at, "'" + keyword +
                             "' is not a keyword of the head: one of plug-in, module, direction, include, " +
                             "target, wanted, nodes");
  }
}

// What every head must say, checked where the nodes begin.
void check_head(const table &result, const std::vector<std::string> &seen) {
  for (const char *keyword : {"plug-in", "module", "direction"}) {
    if (std::count(seen.begin(), seen.end(), keyword) != 1) {
      throw error(result.nodes_at, std::string("the head must say '") + keyword + "' once");
    }
  }
}

// Reads the lines from `next` on that stand `depth` levels deep, each with the deeper lines that follow it.
std::vector<row> parse_rows(const std::vector<line> &lines, std::size_t &next, std::size_t depth) {
  std::vector<row> rows;
  while (next < lines.size() && lines[next].indent >= 2 * depth) {
    if (lines[next].indent != 2 * depth) {
      throw error(lines[next].at, "'" + lines[next].words[0] + "' is indented by " +
                                      std::to_string(lines[next].indent) + " blanks: two for each level, at most one " +
                                      "level below the line before");
    }
    if (depth == deepest_level) {
      throw error(lines[next].at, "nodes inside each other more than " + std::to_string(deepest_level) + " deep");
    }
    row result = parse_row(lines[next].words, lines[next].at);
    ++next;
    result.children = parse_rows(lines, next, depth + 1);
    rows.push_back(std::move(result));
  }
  return rows;
}

}  // namespace

table read_table(const std::string &file) {
  std::ifstream input(file);
  if (!input) {
    throw error("cannot read '" + file + "'");
  }
  return read_table(input, file);
}

table read_table(std::istream &input, const std::string &file) {
  const std::vector<line> lines = read_lines(input, file);
  table result;
  result.file = file;
  std::vector<std::string> seen;
  std::size_t next = 0;
  for (; next < lines.size() && lines[next].words[0] != "nodes"; ++next) {
    parse_head(result, lines[next]);
    seen.push_back(lines[next].words[0]);
  }
  if (next == lines.size()) {
    throw error({file, lines.empty() ? 1 : lines.back().at.line}, "no line 'nodes' in the table");
  }
  result.nodes_at = lines[next].at;
  check_head(result, seen);
  result.rows = parse_rows(lines, ++next, 0);
  return result;
}

const char *word_of(direction which) {
  return which == direction::xo ? "xo" : "ox";
}

}  // namespace ymapgen
