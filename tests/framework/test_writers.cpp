#include <gtest/gtest.h>

#include "library.hpp"
#include "yfw/writer.hpp"

namespace {

constexpr const char *lib = "urn:test:library";
constexpr const char *shop = "urn:test:shop";

std::string as_xml(const yfw::data_tree &tree, const yfw::write_options &options = {.pretty = false}) {
  std::ostringstream out;
  yfw::write_xml(out, tree, options);
  return out.str();
}

std::string as_json(const yfw::data_tree &tree, const yfw::write_options &options = {.pretty = false}) {
  std::ostringstream out;
  yfw::write_json(out, tree, options);
  return out.str();
}

yfw::data_node &book(yfw::data_tree &tree, std::string_view title, std::string_view edition) {
  const yfw::key_value keys[] = {{"edition", edition}, {"title", title}};
  return tree.entry(&tree.at(nullptr, lib, "library"), lib, "book", keys);
}

TEST(DataTree, FindsWhatItHas) {
  yfw::data_tree tree(library());
  yfw::data_node &emma = book(tree, "Emma", "1");
  EXPECT_NE(&book(tree, "Emma", "2"), &emma);
  EXPECT_EQ(&book(tree, "Emma", "1"), &emma);
  EXPECT_NE(&book(tree, "Aedition1", ""), &book(tree, "A", "1edition"));
  EXPECT_NE(&tree.at(&emma, shop, "price"), &tree.at(&emma, lib, "price"));
  EXPECT_EQ(&tree.item(emma.parent, lib, "shelf", "1"), &tree.item(emma.parent, lib, "shelf", "1"));
  EXPECT_EQ(yfw::path(tree.at(&emma, lib, "price")), "/library/book[title=\"Emma\"][edition=\"1\"]/price");
  tree.clear();
  EXPECT_EQ(tree.first(), nullptr);
  EXPECT_EQ(as_json(tree), "{}");
  book(tree, "Emma", "1");
  EXPECT_EQ(as_json(tree), R"({"library:library":{"book":[{"title":"Emma","edition":1}]}})");
}

// A tree with each kind of node, entries of the list interleaved with other nodes.
yfw::data_tree full_tree() {
  yfw::data_tree tree(library());
  yfw::data_node &top = tree.at(nullptr, lib, "library");
  yfw::data_node &emma = book(tree, "Emma", "1");
  tree.set_value(tree.at(&emma, lib, "price"), "9.50");
  tree.set_value(tree.at(&emma, shop, "price"), "9");
  tree.set_value(tree.at(&emma, lib, "genre"), "crime");
  tree.set_value(tree.at(&emma, lib, "floor"), "-5");
  tree.set_value(tree.at(&top, lib, "motto"), "<a> & \"b\"\\\r\n");
  tree.set_value(tree.at(&book(tree, "Sylvia", "20"), lib, "pages"), "unknown");
  tree.set_value(tree.at(&top, lib, "open"), "true");
  tree.set_value(tree.at(&top, lib, "closed"), "");
  tree.item(&top, lib, "shelf", "3");
  tree.item(&top, lib, "shelf", "4");
  tree.at(&top, lib, "name");
  tree.set_value(tree.at(&top, lib, "gas-meter"), "18446744073709551615");
  tree.set_value(tree.at(&tree.add(&top, lib, "visit"), lib, "minutes"), "5");
  tree.set_value(tree.at(&tree.add(&top, lib, "visit"), lib, "minutes"), "050");
  return tree;
}

TEST(Writers, WriteEachKindOfNode) {
  const yfw::data_tree tree = full_tree();
  EXPECT_EQ(
      as_xml(tree),
      "<library xmlns=\"urn:test:library\"><book><title>Emma</title><edition>1</edition><price>9.50</price>"
      "<price xmlns=\"urn:test:shop\">9</price><genre "
      "xmlns:shop=\"urn:test:shop\">shop:crime</genre><floor>-5</floor></book>"
      "<book><title>Sylvia</title><edition>20</edition><pages>unknown</pages></book>"
      "<motto>&lt;a&gt; &amp; &quot;b&quot;\\&#13;\n</motto><open>true</open><closed/><shelf>3</shelf><shelf>4</shelf>"
      "<name/><gas-meter>18446744073709551615</gas-meter><visit><minutes>5</minutes></visit>"
      "<visit><minutes>050</minutes></visit></library>");
  EXPECT_EQ(as_json(tree), R"({"library:library":{"book":[{"title":"Emma","edition":1,"price":"9.50","shop:price":9,)"
                           R"("genre":"shop:crime","floor":-5},{"title":"Sylvia","edition":20,"pages":"unknown"}],)"
                           R"("motto":"<a> & \"b\"\\\r\n","open":true,"closed":[null],"shelf":[3,4],"name":null,)"
                           R"("gas-meter":"18446744073709551615","visit":[{"minutes":5},{"minutes":"050"}]}})");
}

TEST(Writers, WriteOperationsWhereTheyChange) {
  yfw::data_tree tree(library());
  yfw::data_node &emma = book(tree, "Emma", "1");
  emma.operation = YFW_OPERATION_REPLACE;
  tree.at(&emma, lib, "loan").operation = YFW_OPERATION_REPLACE;
  tree.at(&emma, lib, "price").operation = YFW_OPERATION_DELETE;
  emma.parent->operation = YFW_OPERATION_MERGE;
  tree.item(emma.parent, lib, "shelf", "1");
  tree.item(emma.parent, lib, "shelf", "2").operation = YFW_OPERATION_REMOVE;
  EXPECT_EQ(as_xml(tree),
            "<library xmlns=\"urn:test:library\">"
            "<book xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\" nc:operation=\"replace\"><title>Emma</title>"
            "<edition>1</edition><loan/><price nc:operation=\"delete\"/></book><shelf>1</shelf>"
            "<shelf xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\" nc:operation=\"remove\">2</shelf></library>");
  EXPECT_EQ(as_json(tree),
            R"({"library:library":{"book":[{"@":{"ietf-netconf:operation":"replace"},"title":"Emma","edition":1,)"
            R"("loan":{},"@price":{"ietf-netconf:operation":"delete"}}],"shelf":[1,2],)"
            R"("@shelf":[null,{"ietf-netconf:operation":"remove"}]}})");
}

TEST(Writers, WrapXmlInElements) {
  yfw::data_tree tree(library());
  tree.at(nullptr, lib, "library").operation = YFW_OPERATION_CREATE;
  const yfw::write_options options{
      .wrappers = {
          {"edit-config", yfw::netconf_ns, {}, {{"target", yfw::netconf_ns, {}, {{"running", yfw::netconf_ns}}}}},
          {"config", yfw::netconf_ns, {{"a", "<\">"}}}}};
  EXPECT_EQ(as_xml(tree, options),
            "<edit-config xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\""
            " xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\">\n"
            "  <target>\n    <running/>\n  </target>\n"
            "  <config a=\"&lt;&quot;&gt;\">\n    <library xmlns=\"urn:test:library\" nc:operation=\"create\"/>\n"
            "  </config>\n</edit-config>\n");
}

TEST(Writers, IndentJson) {
  yfw::data_tree tree(library());
  tree.item(&tree.at(nullptr, lib, "library"), lib, "shelf", "1");
  EXPECT_EQ(as_json(tree, {}), "{\n  \"library:library\": {\n    \"shelf\": [\n      1\n    ]\n  }\n}\n");
}

TEST(Writers, WriteWhatTheReadersTake) {
  const yfw::data_tree tree = full_tree();
  const auto from_xml = yfw::document::read(as_xml(tree, {}), "xml", library());
  const auto from_json = yfw::document::read(as_json(tree, {}), "json", library());
  std::string xml = picture(from_xml);
  xml.replace(xml.find("closed"), 6, "closed=");  // an empty element has no value, [null] the empty one
  EXPECT_EQ(xml, picture(from_json));
}

TEST(Writers, RefuseWhatTheFormatsCannotCarry) {
  yfw::data_tree tree(library());
  yfw::data_node &motto = tree.at(&tree.at(nullptr, lib, "library"), lib, "motto");
  tree.set_value(motto, "a\x01");
  EXPECT_EQ(thrown_by([&] { as_xml(tree); }),
            "/library/motto: the value has a character that YANG does not allow at byte 2");
  tree.set_value(motto, "\xff");
  EXPECT_EQ(thrown_by([&] { as_json(tree); }), "/library/motto: the value is not UTF-8 at byte 1");
  tree.clear();
  tree.at(nullptr, "urn:unknown", "a");
  EXPECT_EQ(thrown_by([&] { as_json(tree); }), "/a: unknown namespace 'urn:unknown'");
  std::ostringstream out;
  out.setstate(std::ios::badbit);
  EXPECT_EQ(thrown_by([&] { yfw::write_xml(out, tree); }), "the output cannot be written");
}

}  // namespace
