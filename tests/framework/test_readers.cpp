#include <gtest/gtest.h>

#include "library.hpp"
#include "yfw/instance_path.hpp"

namespace {

struct ReadRow {
  const char *name;
  std::string in;
  const char *out;  // the picture of the nodes, or behind "in:" the message of the error
};

class Read : public testing::TestWithParam<ReadRow> {};

std::string outcome(const std::string &text, const yfw::read_limits &limits = {}) {
  std::string result;
  const std::string error = thrown_by([&] { result = picture(yfw::document::read(text, "in", library(), limits)); });
  return error.empty() ? result : error;
}

TEST_P(Read, GivesNodesOrAnError) {
  EXPECT_EQ(outcome(GetParam().in), GetParam().out);
}

std::string row_name(const testing::TestParamInfo<ReadRow> &info) {
  return info.param.name;
}

// A library with that inside.
std::string xml(const std::string &inside) {
  return "<library xmlns='urn:test:library'>\n" + inside + "</library>";
}
std::string json(const std::string &inside) {
  return "{\"library:library\": {\n" + inside + "}}";
}

INSTANTIATE_TEST_SUITE_P(
    Xml, Read,
    testing::Values(
        ReadRow{"Leaf", xml("<name>North</name>"), "library:library{name=North}"},
        ReadRow{"Empty", xml("<name/><open></open>"), "library:library{name open}"},
        ReadRow{"Declaration", "<?xml version='1.0' encoding='utf-8'?>\n" + xml(""), "library:library"},
        ReadRow{"ByteOrderMark", "\xef\xbb\xbf" + xml(""), "library:library"},
        ReadRow{"Prefixes",
                "<l:library xmlns:l='urn:test:library' xmlns='urn:test:shop'><l:book><price/></l:book></l:library>",
                "library:library{book{shop:price}}"},
        ReadRow{"InnerPrefixWins",
                "<a:library xmlns:a='urn:test:library'><a:book xmlns:a='urn:x'/><a:book/></a:library>",
                "library:library{urn:x:book? book}"},
        ReadRow{"BlankTextIsKept", xml("<motto> </motto>"), "library:library{motto= }"},
        ReadRow{"BlankNumberIsNot", xml("<open> </open><book>\n</book>"), "library:library{open book}"},
        ReadRow{"TextIsExact", xml("<motto> a\r\nb </motto>"), "library:library{motto= a\nb }"},
        ReadRow{"References", xml("<motto>&lt;&gt;&amp;&quot;&apos;&#65;&#x4a;</motto>"),
                "library:library{motto=<>&\"'AJ}"},
        ReadRow{"Sections", xml("<motto>a<![CDATA[<&]]><!-- b -->c<?d e?>f</motto>"), "library:library{motto=a<&cf}"},
        ReadRow{"Operations",
                xml("<book xmlns:n='urn:ietf:params:xml:ns:netconf:base:1.0' n:operation='replace'>"
                    "<price n:operation='remove'/></book>"),
                "library:library{book!replace{price!remove}}"},
        ReadRow{"Unknown", xml("<page><line>1</line></page>"), "library:library{page?{line?=1}}"},
        ReadRow{"Message",
                "<rpc xmlns='urn:ietf:params:xml:ns:netconf:base:1.0' message-id='1'><get><filter type='subtree'>" +
                    xml("<name/>") + "</filter></get></rpc>",
                "ietf-netconf:rpc{get{filter{library:library{name}}}}"},
        ReadRow{"LanguageAttribute", xml("<motto xml:lang='en'>a</motto>"), "library:library{motto=a}"}),
    row_name);

INSTANTIATE_TEST_SUITE_P(
    RefusedXml, Read,
    testing::Values(
        ReadRow{"NoText", " \n", "in:1: is empty, expected '<' (XML) or '{' (JSON)"},
        ReadRow{"NoXml", "\nabc", "in:2: begins with 'a', expected '<' (XML) or '{' (JSON)"},
        ReadRow{"DocumentType", "<!DOCTYPE a [<!ENTITY b 'c'>]>\n<a/>",
                "in:1: document types and entity declarations are not allowed (RFC 6241, section 3)"},
        ReadRow{
            "Entity", xml("\n<name>&b;</name>"),
            "in:3: '&b;' is not a reference to a character that YANG allows, nor one of &lt; &gt; &amp; &quot; &apos;"},
        ReadRow{
            "BareAmpersand", xml("<name>a & b</name>"),
            "in:2: '&' is not a reference to a character that YANG allows, nor one of &lt; &gt; &amp; &quot; &apos;"},
        ReadRow{"ZeroReference", xml("<name>&#0;</name>"),
                "in:2: '&#0;' is not a reference to a character that YANG allows, nor one of &lt; &gt; &amp; &quot; "
                "&apos;"},
        ReadRow{
            "SurrogateReference", xml("<name>&#xD800;</name>"),
            "in:2: '&#xD800;' is not a reference to a character that YANG allows, nor one of &lt; &gt; &amp; &quot; "
            "&apos;"},
        ReadRow{
            "EntityInAttribute", "<a b='&c;'/>",
            "in:1: '&c;' is not a reference to a character that YANG allows, nor one of &lt; &gt; &amp; &quot; &apos;"},
        ReadRow{"ZeroByte", xml("\n<name>a") + std::string(1, '\0') + "</name>", "in:3: a zero byte is not allowed"},
        ReadRow{"TwoRoots", xml("") + "\n<b/>", "in:3: '<b>' is a second root element"},
        ReadRow{"TextBehind", xml("") + "\n text", "in:2: text 'text' outside the root element"},
        ReadRow{"OnlyComment", "<!-- -->", "in:1: the document has no element"},
        ReadRow{"Truncated", "<library xmlns='urn:test:library'>\n<name>North</name>\n",
                "in:2: the text ends inside an element"},
        ReadRow{"TruncatedTag", "<library\n xmlns='a", "in:2: attribute value holds '<' or is not closed by \"'\""},
        ReadRow{"Mismatch", xml("<name>\n</nam>"), "in:3: '</nam>' does not close the open element"},
        ReadRow{"CommentUnclosed", xml("<!-- a"), "in:2: comment is not closed by '--'"},
        ReadRow{"SectionEnd", xml("<motto>a]b]]></motto>"), "in:2: ']]>' is not allowed outside a CDATA section"},
        ReadRow{"AngleInAttribute", "<a b='<'/>", "in:1: attribute value holds '<' or is not closed by \"'\""},
        ReadRow{"RepeatedAttribute", "<a xmlns='x' b='1' b='2'/>", "in:1: attribute 'b' is given twice"},
        ReadRow{"LateDeclaration", "\n<?xml version='1.0'?>" + xml(""),
                "in:2: an XML declaration is allowed only at the beginning"},
        ReadRow{"DeclarationAfterComment", "<!-- a --><?xml version='1.0'?>" + xml(""),
                "in:1: an XML declaration is allowed only at the beginning"},
        ReadRow{"TwoDeclarations", "<?xml version='1.0'?><?xml version='1.0'?>" + xml(""),
                "in:1: an XML declaration is allowed only at the beginning"},
        ReadRow{"Version", "<?xml version='1.1'?>" + xml(""), "in:1: invalid XML version '1.1', expected '1.0'"},
        ReadRow{"Encoding", "<?xml version='1.0' encoding='ISO-8859-1'?>" + xml(""),
                "in:1: invalid encoding 'ISO-8859-1', expected 'UTF-8'"},
        ReadRow{"UndeclaredPrefix", xml("<b:name/>"), "in:2: /library: prefix 'b' is not declared"},
        ReadRow{"TwoColons", xml("<a:b:c/>"), "in:2: /library: invalid name 'a:b:c'"},
        ReadRow{"NoNamespace", "<till/>", "in:1: 'till' has no namespace"},
        ReadRow{"NamespaceTakenBack", xml("<name xmlns=''/>"), "in:2: /library: 'name' has no namespace"},
        ReadRow{"TextBesideElements", xml("<book>\n<title>Emma</title><edition>1</edition>lost</book>"),
                "in:3: /library/book[title=\"Emma\"][edition=\"1\"]: text 'lost' between elements"},
        ReadRow{"PlainOperation", xml("<name operation='delete'/>"),
                "in:2: /library/name: attribute 'operation' has no namespace, expected nc:operation with "
                "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\""},
        ReadRow{"UnknownOperation", xml("<name xmlns:n='urn:ietf:params:xml:ns:netconf:base:1.0' n:operation='drop'/>"),
                "in:2: /library/name: invalid operation 'drop', expected 'merge', 'replace', 'create', 'delete', "
                "'remove'"},
        ReadRow{"UnknownAttribute", xml("<name color='red'/>"),
                "in:2: /library/name: unknown attribute 'color', expected nc:operation"}),
    row_name);

INSTANTIATE_TEST_SUITE_P(
    Utf8, Read,
    testing::Values(
        ReadRow{"Good", xml("<motto>\u00e9\u20ac\U0001f4d6</motto>"), "library:library{motto=\u00e9\u20ac\U0001f4d6}"},
        ReadRow{"Overlong", xml("<motto>\xc0\xaf</motto>"), "in:2: the text is not UTF-8"},
        ReadRow{"OverlongThree", xml("<motto>\xe0\x9f\xbf</motto>"), "in:2: the text is not UTF-8"},
        ReadRow{"Surrogate", xml("<motto>\xed\xa0\x80</motto>"), "in:2: the text is not UTF-8"},
        ReadRow{"TooHigh", xml("<motto>\xf4\x90\x80\x80</motto>"), "in:2: the text is not UTF-8"},
        ReadRow{"Latin1", json("\"motto\": \"caf\xe9\""), "in:2: the text is not UTF-8"},
        ReadRow{"CutOff", "<a>\n\xe2\x82", "in:2: the text is not UTF-8"},
        ReadRow{"NoncharacterOfAPlane", xml("<motto>\xf0\x9f\xbf\xbe</motto>"),
                "in:2: the text has a character that YANG does not allow"},
        ReadRow{"Noncharacter", xml("<motto>\xef\xbf\xbf</motto>"),
                "in:2: the text has a character that YANG does not allow"},
        ReadRow{"Control", xml("<motto>\x1b</motto>"), "in:2: the text has a character that YANG does not allow"}),
    row_name);

INSTANTIATE_TEST_SUITE_P(
    Json, Read,
    testing::Values(
        ReadRow{"Scalars", json(R"("name": "North", "open": true, "gas-meter": 1.50e2, "stove": null)"),
                "library:library{name=North open=true gas-meter=1.50e2 stove}"},
        ReadRow{"Empty", json(R"("closed": [null])"), "library:library{closed=}"},
        ReadRow{"Lists", json(R"("shelf": [1, 2], "book": [{"title": "Emma", "shop:price": 3}, {}], "visit": [])"),
                "library:library{shelf=1 shelf=2 book{title=Emma shop:price=3} book}"},
        ReadRow{"TwoTops", R"({"library:library": {}, "shop:library": {"till": "1"}})",
                "library:library shop:library{till=1}"},
        ReadRow{"Escapes", json(R"("motto": "\"\\\/\n\u00e9\ud83d\udcd6")"),
                "library:library{motto=\"\\/\n\u00e9\U0001f4d6}"},
        ReadRow{"Envelope", R"({"ietf-restconf:data": {"library:library": {"name": null}}})",
                "ietf-restconf:data{library:library{name}}"},
        ReadRow{"OperationInside", json(R"("@": {"ietf-netconf:operation": "replace"}, "name": "A")"),
                "library:library!replace{name=A}"},
        ReadRow{"OperationOfLeaf", json(R"("@name": {"ietf-netconf:operation": "create"}, "name": "A")"),
                "library:library{name!create=A}"},
        ReadRow{"OperationOfAbsentLeaf", json(R"("@name": {"ietf-netconf:operation": "delete"})"),
                "library:library{name!delete}"},
        ReadRow{"OperationsOfLeafList",
                json(R"("shelf": [1, 2], "@shelf": [null, {"ietf-netconf:operation": "remove"}])"),
                "library:library{shelf=1 shelf!remove=2}"},
        ReadRow{"OtherAnnotation", json(R"("name": "A", "@name": {"shop:seen": true})"), "library:library{name=A}"}),
    row_name);

INSTANTIATE_TEST_SUITE_P(
    RefusedJson, Read,
    testing::Values(
        ReadRow{"Truncated", "{\"library:library\": {\n", "in:2: the text ends inside a value"},
        ReadRow{"TrailingComma", json("\"name\": \"A\",\n"), "in:3: missing a name for object member at '}'"},
        ReadRow{"TwoRoots", json("") + "\n{}", "in:3: the document root must not be followed by other values at '{'"},
        ReadRow{"Comment", json("// a\n"), "in:2: missing a name for object member at '//'"},
        ReadRow{"NotANumber", json("\"shelf\": [NaN]"), "in:2: invalid value at 'NaN'"},
        ReadRow{"UnknownModule", R"({"libary:library": {}})", "in:1: unknown module 'libary'; did you mean 'library'?"},
        ReadRow{"NoModule", R"({"name": {}})", "in:1: 'name' has no module name"},
        ReadRow{"RepeatedMember", json("\"name\": \"A\",\n\"library:name\": \"B\""),
                "in:3: /library: 'name' is given twice"},
        ReadRow{"RepeatedTop", R"({"library:library": {}, "library:library": {}})", "in:1: 'library' is given twice"},
        ReadRow{"ArrayInArray", json("\"shelf\": [[1]]"),
                "in:2: /library: an array is not allowed in an array or an annotation"},
        ReadRow{"MixedArray", json("\"book\": [{}, 1]"),
                "in:2: /library: an array must hold objects or values, not both"},
        ReadRow{"NullInArray", json("\"shelf\": [1, null]"),
                "in:2: /library: null is not allowed in the array of 'shelf'"},
        ReadRow{"EscapedZero", json(R"("motto": "\u0000")"),
                "in:2: /library: an escape in a string has a character that YANG does not allow"},
        ReadRow{"HighSurrogate", json(R"("motto": "\ud800")"),
                "in:2: the surrogate pair in string is invalid at '\"\\ud800\"'"},
        ReadRow{"LowSurrogate", json(R"("motto": "\udc00")"), "in:2: /library: an escape in a string is not UTF-8"},
        ReadRow{"RawControl", json("\"motto\": \"a\nb\""),
                "in:2: a string holds an unknown escape or a control character at '\"a'"},
        ReadRow{"UnknownOperation", json(R"("@": {"ietf-netconf:operation": "drop"})"),
                "in:2: /library: invalid operation 'drop', expected 'merge', 'replace', 'create', 'delete', 'remove'"},
        ReadRow{"OperationWithoutModule", json(R"("@": {"operation": "delete"})"),
                "in:2: /library: annotation 'operation' has no module name"},
        ReadRow{"OperationNoString", json(R"("@": {"ietf-netconf:operation": 3})"),
                "in:2: /library: the value of 'ietf-netconf:operation' must be a string"},
        ReadRow{"AnnotationOutside", json("\"@book\": {\"ietf-netconf:operation\": \"delete\"}"),
                "in:2: /library: the annotation of 'book' must be inside it, as '@'"},
        ReadRow{"AnnotationAtTop", R"({"@": {}})", "in:1: '@' must be inside the object that it annotates"},
        ReadRow{"AnnotationNoObject", json(R"("@name": 1)"), "in:2: /library: an annotation must be an object"},
        ReadRow{"TooManyAnnotations", json(R"("shelf": [1], "@shelf": [null, null])"),
                "in:2: /library: more annotations than values of 'shelf'"}),
    row_name);

std::string repeated(const std::string &text, size_t count) {
  std::string result;
  for (size_t i = 0; i < count; ++i) {
    result += text;
  }
  return result;
}

TEST(Limits, HoldAgainstHostileDocuments) {
  EXPECT_EQ(outcome(repeated("<a xmlns='x'>", 100000)), "in:1: the text ends inside an element");
  EXPECT_TRUE(outcome(repeated("<a xmlns='x'>", 129) + repeated("</a>", 129)).ends_with(": nested more than 128 deep"));
  EXPECT_TRUE(outcome(repeated("{\"library:a\":", 100000)).ends_with(": nested more than 128 deep"));
  EXPECT_TRUE(outcome("{\"library:a\":" + repeated("[", 100000)).starts_with("in:1: an array is not allowed in"));
  std::string attributes;
  for (int i = 0; i < 65; ++i) {
    attributes += " a" + std::to_string(i) + "=''";
  }
  EXPECT_EQ(outcome("<a xmlns='x'" + attributes + "/>"), "in:1: more than 64 attributes");
  EXPECT_EQ(outcome(xml("<name/><open/>"), {.nodes = 2}), "in:2: /library: more than 2 nodes");
  EXPECT_EQ(outcome(xml(""), {.bytes = 10}), "in:1: larger than 10 bytes");
  EXPECT_EQ(outcome(repeated("<a xmlns='x'>", 3) + repeated("</a>", 3), {.declarations = 2}),
            "in:1: /a/a: more than 2 namespace declarations in scope");
}

TEST(Document, MayBeAsLargeAsTheLimits) {
  EXPECT_EQ(outcome("<data xmlns='urn:ietf:params:xml:ns:netconf:base:1.0' a=''/>", {.attributes = 2}),
            "ietf-netconf:data");
  EXPECT_EQ(outcome(xml("<name/><open/>"), {.bytes = xml("<name/><open/>").size(), .nodes = 3}),
            "library:library{name open}");
  EXPECT_EQ(outcome(repeated("<a xmlns='x'>", 3) + repeated("</a>", 3), {.declarations = 3}), "x:a?{a?{a?}}");
}

TEST(Document, TellsPlacesOfNodes) {
  const auto document = yfw::document::read(
      xml("<book>\n<title>a \"b\" &amp; c\n</title><edition>1</edition>\n<price>1</price></book>"), "in", library());
  const yfw_node_t &book = yfw::children(document.roots()[0])[0];
  const yfw_node_t &price = *yfw::child(book, "price", "urn:test:library");
  EXPECT_EQ(document.line(book), 2U);
  EXPECT_EQ(document.line(price), 5U);
  EXPECT_EQ(document.where(price).path, "/library/book[title='a \"b\" & c\n'][edition=\"1\"]/price");
  const auto other = yfw::document::read(json("\"shelf\": [1,\n2]"), "in", library());
  EXPECT_EQ(other.line(yfw::children(other.roots()[0])[1]), 3U);
}

TEST(Document, LeavesEnvelopesOutOfPathsOfData) {
  const auto document = yfw::document::read(
      "<data xmlns='urn:ietf:params:xml:ns:netconf:base:1.0'>" + xml("") + "</data>", "in", library());
  EXPECT_EQ(yfw::path(document.roots()[0]), "/data");
  EXPECT_EQ(yfw::path(yfw::children(document.roots()[0])[0]), "/library");
}

TEST(Document, GivesAttributesAndPrefixes) {
  auto first = yfw::document::read(
      "<filter xmlns='urn:ietf:params:xml:ns:netconf:base:1.0' xmlns:s='urn:test:shop' "
      "s:b='c' type='subtree'>" +
          xml("<book><genre>s:crime</genre></book>") + "</filter>",
      "in", library());
  const yfw::document document = std::move(first);
  const yfw_node_t &filter = document.roots()[0];
  EXPECT_EQ(document.attribute(filter, "", "type"), "subtree");
  EXPECT_EQ(document.attribute(filter, "urn:test:shop", "b"), "c");
  EXPECT_EQ(document.attribute(filter, "", "b"), std::nullopt);
  const yfw_node_t &genre = yfw::children(yfw::children(yfw::children(filter)[0])[0])[0];
  EXPECT_EQ(document.prefix_namespace(genre, "s"), "urn:test:shop");
  EXPECT_EQ(document.prefix_namespace(genre, "t"), std::nullopt);
  EXPECT_EQ(document.prefix_namespace(genre, ""), "urn:test:library");
  EXPECT_EQ(document.check(genre).canonical, "crime");
}

// Texts are searched by blocks of up to 64 bytes: what counts is found at each place of a block, and nothing else is.
TEST(Document, IsSearchedAtEachPlaceOfABlock) {
  for (size_t shift = 0; shift < 80; ++shift) {
    SCOPED_TRACE(shift);
    const std::string before(shift, 'x');
    const std::string motto = "library:library{motto=" + before + " '>\"]]b}";
    EXPECT_EQ(outcome(xml("<motto xml:lang='" + before + ">'>" + before + " '>\"]]b</motto>")), motto);
    EXPECT_EQ(outcome(json("\"motto\": \"" + before + " '>\\\"]]b\"")), motto);
    EXPECT_EQ(outcome(xml("<motto>\n" + before + "]]></motto>")), "in:3: ']]>' is not allowed outside a CDATA section");
    EXPECT_EQ(outcome(xml("<motto \n" + before + "<")), "in:2: tag is not closed by '>'");
    EXPECT_EQ(outcome(xml("<motto>\n" + before + "<!A>")),
              "in:3: document types and entity declarations are not allowed (RFC 6241, section 3)");
    EXPECT_EQ(outcome(xml("<motto>\n" + before + "\x7f\x1f")),
              "in:3: the text has a character that YANG does not allow");
    EXPECT_EQ(outcome("<a>\n" + before + "\xff"), "in:2: the text is not UTF-8");
  }
}

}  // namespace
