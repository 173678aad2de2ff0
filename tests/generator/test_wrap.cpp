// Where long lines of generated sources are broken. The committed sources show the rules at work; these rows hold each
// of them at its limit.
#include "wrap.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace {

struct wrap_row {
  const char *name;
  std::string line;
  std::string wrapped;
};

// A name of that width.
std::string n(std::size_t width) {
  return std::string(width, 'n');
}

std::string indent(std::size_t width) {
  return std::string(width, ' ');
}

class Wrap : public testing::TestWithParam<wrap_row> {};

void PrintTo(const wrap_row &row, std::ostream *out) {
  *out << row.name;
}

TEST_P(Wrap, Line) {
  EXPECT_EQ(ymapgen::wrapped(GetParam().line), GetParam().wrapped);
}

const auto name_of = [](const auto &row) { return std::string(row.param.name); };

INSTANTIATE_TEST_SUITE_P(
    Calls, Wrap,
    testing::Values(wrap_row{"Fits", "  status = " + n(92) + "(ctx, node, out);",
                             "  status = " + n(92) + "(ctx, node, out);"},
                    wrap_row{"Assignment", "  status = " + n(93) + "(ctx, node, out);",
                             "  status =\n      " + n(93) + "(ctx, node, out);"},
                    wrap_row{"Parenthesis", "  status = " + n(102) + "(ctx, node, out);",
                             "  status = " + n(102) + "(\n      ctx, node, out);"},
                    wrap_row{"AssignmentAndComma", "  const uint32_t status = " + n(98) + "(ctx, node, out);",
                             "  const uint32_t status =\n      " + n(98) + "(ctx, node,\n" + indent(105) + "out);"},
                    wrap_row{"AssignmentAndParenthesis", "  const uint32_t status = " + n(104) + "(ctx, node, out);",
                             "  const uint32_t status =\n      " + n(104) + "(\n          ctx, node, out);"},
                    wrap_row{"NameWiderThanALine", "  status = " + n(130) + "(ctx, node, out);",
                             "  status =\n      " + n(130) + "(\n          ctx, node, out);"},
                    wrap_row{"ArgumentAligned", "ALIAS(" + n(113) + ", n);", "ALIAS(" + n(113) + ",\n      n);"},
                    wrap_row{"ArgumentsBehindParenthesis", "LONG_ALIAS(" + n(1) + ", " + n(108) + ");",
                             "LONG_ALIAS(\n    " + n(1) + ", " + n(108) + ");"},
                    wrap_row{"EachArgument", "ALIAS(" + n(56) + ", " + n(113) + ");",
                             "ALIAS(\n    " + n(56) + ",\n    " + n(113) + ");"},
                    wrap_row{"FewestCommas", "  add(" + n(50) + ", " + n(50) + ", " + n(50) + ", " + n(50) + ");",
                             "  add(" + n(50) + ", " + n(50) + ",\n      " + n(50) + ", " + n(50) + ");"},
                    wrap_row{"NestedCall", "  add(first, scale_of(" + n(45) + ", " + n(45) + "), last);",
                             "  add(first, scale_of(" + n(45) + ", " + n(45) + "),\n      last);"},
                    wrap_row{"Literal", "  add(\"" + n(50) + ", (\\\"" + n(50) + " && = \", nullptr);",
                             "  add(\"" + n(50) + ", (\\\"" + n(50) + " && = \",\n      nullptr);"}),
    name_of);

INSTANTIATE_TEST_SUITE_P(
    Declarations, Wrap,
    testing::Values(
        wrap_row{"ParametersAligned", "uint32_t " + n(91) + "(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {",
                 "uint32_t " + n(91) + "(yfw_ctx_t *ctx,\n" + indent(101) + "yfw_node_t *node,\n" + indent(101) +
                     "yfw_node_t *out) {"},
        wrap_row{"ParametersBehindParenthesis", "uint32_t " + n(97) + "(a_t *first, b_t *second) {",
                 "uint32_t " + n(97) + "(\n    a_t *first, b_t *second) {"},
        wrap_row{"Name", "static uint32_t " + n(111) + "(a_t *first, b_t *second) {",
                 "static uint32_t\n" + n(111) + "(\n    a_t *first, b_t *second) {"},
        wrap_row{"Function", "ymap_node_function " + n(101) + ";", "ymap_node_function\n    " + n(101) + ";"}),
    name_of);

INSTANTIATE_TEST_SUITE_P(
    Other, Wrap,
    testing::Values(wrap_row{"Condition", "    } else if (match(child, " + n(74) + ") != 0 && is_read(ctx)) {",
                             "    } else if (match(child, " + n(74) + ") != 0 &&\n               is_read(ctx)) {"},
                    wrap_row{"Discarded", "  (void)" + n(100) + "(ctx, node, out);",
                             "  (void)" + n(100) + "(ctx, node,\n" + indent(109) + "out);"},
                    wrap_row{"Comment", "// " + n(60) + "(" + n(60) + ")", "// " + n(60) + "(" + n(60) + ")"},
                    wrap_row{"OtherLines", "{\n\n  status = " + n(93) + "(ctx, node, out);\n}\n",
                             "{\n\n  status =\n      " + n(93) + "(ctx, node, out);\n}\n"}),
    name_of);

}  // namespace
