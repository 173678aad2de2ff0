// A reply translated in chunks must give what it gives as a whole: data, notes and errors.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <sstream>

#include "ethernet.hpp"
#include "yfw/node.hpp"
#include "yfw/reply_stream.hpp"
#include "yfw/trace.hpp"
#include "yfw/writer.hpp"

namespace {

// The shipped modules, and one with entries inside entries.
const yfw::schema &labelled_modules() {
  static const yfw::schema schema = yfw::schema::load({YMAP_TEST_YANG, YFW_TEST_DATA "/labels"});
  return schema;
}

// Gives a few bytes at a time, as a pipe may.
class text_in_parts : public yfw::text_source {
 public:
  text_in_parts(std::string text, bool can_seek) : text_(std::move(text)), can_seek_(can_seek) {}

  size_t read(std::span<char> room) override {
    constexpr size_t most = 37;
    const size_t count = std::min({room.size(), most, text_.size() - at_});
    std::memcpy(room.data(), text_.data() + at_, count);
    at_ += count;
    return count;
  }
  bool seek(size_t offset) override {
    at_ = can_seek_ ? offset : at_;
    return can_seek_;
  }

 private:
  std::string text_;
  bool can_seek_;
  size_t at_ = 0;
};

// All that a translation says, as one text.
std::string told(const std::string &output, const std::vector<yfw::note> &notes) {
  std::string text = output;
  for (const yfw::note &each : notes) {
    text += "note: " + to_string(each) + '\n';
  }
  return text;
}

std::string in_one_chunk(const std::string &text, const yfw::stream_options &options) {
  try {
    yfw::document document = yfw::document::read(text, "reply", labelled_modules());
    yfw::trace_log silent;
    const yfw::reply reply = translate_reply(document, mapping(), options.reply, silent);
    std::ostringstream out;
    if (options.to.value_or(document.format()) == yfw::data_format::json) {
      write_json(out, reply.data);
    } else {
      write_xml(out, reply.data, {.wrappers = {{"data", yfw::netconf_ns}}});
    }
    return told(out.str(), reply.notes);
  } catch (const yfw::error &fault) {
    return fault.what();
  }
}

std::string in_chunks(const std::string &text, const yfw::stream_options &options, bool can_seek) {
  std::ostringstream out;
  try {
    text_in_parts source(text, can_seek);
    yfw::trace_log silent;
    std::vector<yfw::note> notes;
    translate_reply_stream(source, "reply", labelled_modules(), mapping(), options, silent, out,
                           [&](const auto &taken) {
                             EXPECT_EQ(out.str(), "") << "written before the notes";
                             notes = taken;
                           });
    return told(out.str(), notes);
  } catch (const yfw::error &fault) {
    EXPECT_EQ(out.str(), "") << "something was written before the fault was found";
    return fault.what();
  }
}

// Each chunk size, job count and kind of source gives the same as the whole.
void expect_same(const std::string &text, yfw::stream_options options = {}) {
  const std::string whole = in_one_chunk(text, options);
  for (const size_t bytes : std::initializer_list<size_t>{0, 1, 60, 200, 100'000}) {
    for (const unsigned jobs : {1U, 3U}) {
      for (const bool can_seek : {true, false}) {
        options.chunk_bytes = bytes;
        options.jobs = jobs;
        EXPECT_EQ(in_chunks(text, options, can_seek), whole)
            << "chunks of " << bytes << " bytes, " << jobs << " jobs, " << (can_seek ? "a file" : "a pipe");
      }
    }
  }
}

std::string envelope(const std::string &data) {
  return "<?xml version=\"1.0\"?>\n<rpc-reply message-id='a>b' "
         "xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\">\n<data>\n" +
         data + "\n</data>\n</rpc-reply>\n";
}

std::string statistics(const std::string &entries) {
  return "<e:ethernet-interface\nxmlns:e=\"urn:zemlo:yang:Zemlo-QUARN-drivers-media-eth-oper\"><e:statistics>\n" +
         entries + "</e:statistics></e:ethernet-interface>\n";
}

std::string statistic(const std::string &name, const std::string &more = {}) {
  return "<e:statistic><e:interface-name>" + name + "</e:interface-name>" + more +
         "<e:received-pause-frames>3</e:received-pause-frames></e:statistic>\n";
}

std::string configurations(const std::string &entries) {
  return "<interface-configurations xmlns='urn:zemlo:yang:Zemlo-QUARN-interface-cfg'>" + entries +
         "</interface-configurations>\n";
}

std::string configuration(const std::string &name, const std::string &speed) {
  return "<interface-configuration><interface-name>" + name +
         "</interface-name>\n<ethernet xmlns='urn:zemlo:yang:Zemlo-QUARN-drivers-media-eth-cfg'><duplex>full</duplex>"
         "<speed>" +
         speed + "</speed></ethernet></interface-configuration>\n";
}

std::string json_statistics(const std::string &entries) {
  return R"({"Zemlo-QUARN-drivers-media-eth-oper:ethernet-interface": {"statistics": {"statistic": [)" + entries +
         "]}}}";
}

std::string json_statistic(const std::string &name) {
  return "\n{\"interface-name\": \"" + name + R"(", "received-pause-frames": "3"})";
}

struct TextRow {
  const char *name;
  std::string text;
};

class ReplyStreamText : public testing::TestWithParam<TextRow> {};

TEST_P(ReplyStreamText, GivesTheSameAsTheWhole) {
  expect_same(GetParam().text);
}

const std::string three = statistic("Gi1") + statistic("Gi2") + statistic("Gi3");

INSTANTIATE_TEST_SUITE_P(
    Xml, ReplyStreamText,
    testing::Values(
        TextRow{"Empty", ""}, TextRow{"Blank", " \n "}, TextRow{"NeitherFormat", "hello"},
        TextRow{"NoData", envelope("")}, TextRow{"NoEntries", envelope(statistics(""))},
        TextRow{"Entries", envelope(statistics(three))}, TextRow{"WithoutEnvelope", statistics(three)},
        TextRow{"ByteOrderMark", "\xef\xbb\xbf" + statistics(three)},
        TextRow{"NothingMapped", statistics("<e:statistic/>")},
        TextRow{"MarkupBetweenEntries", envelope(statistics("<!-- <e:statistic> -->" + three + "<?target a>b?>"))},
        TextRow{"CommentThatBeginsWithAnAngle",
                envelope(statistics(statistic("Gi1") + "<!--> <e:statistic> -->" + statistic("Gi2")))},
        TextRow{"MarkupInEntries",
                envelope(statistics(statistic("Gi1",
                                              "<!-- </e:statistic> --><e:received-good-bytes><![CDATA[4]]>2"
                                              "</e:received-good-bytes>") +
                                    statistic("<![CDATA[Gi<2]]>") + three))},
        TextRow{"AngleInAttribute", envelope("<e:ethernet-interface a:b='/>' xmlns:a='urn:a' "
                                             "xmlns:e='urn:zemlo:yang:Zemlo-QUARN-drivers-media-eth-oper'/>")},
        TextRow{"EmptyEntry", envelope(statistics(statistic("Gi1") + "<e:statistic/>" + statistic("Gi2")))},
        TextRow{"EntryTwice", envelope(statistics(three + statistic("Gi1")))},
        TextRow{"ContainerTwice", envelope(statistics(three) + statistics(statistic("Gi4")))},
        TextRow{"TwoLists", envelope(configurations(configuration("Gi1", "100") + configuration("Gi2", "1000")) +
                                     statistics(three))},
        TextRow{
            "TwoListsWithoutCommonEntries",
            envelope(configurations(configuration("Gi8", "100") + configuration("Gi9", "1000")) + statistics(three))},
        TextRow{"TwoListsInDifferentOrder",
                envelope(configurations(configuration("Gi3", "100") + configuration("Gi9", "1000") +
                                        configuration("Gi1", "abc")) +
                         statistics(three))},
        TextRow{"KeysThatMislead", envelope(configurations(configuration("Gi3", "100")) +
                                            statistics(statistic("Gi1", "<!-- -->") +
                                                       "<e:statistic><!-- <e:interface-name>Gi1</e:interface-name> -->"
                                                       "<e:interface-name>Gi3</e:interface-name></e:statistic>" +
                                                       statistic("Gi&#50;")))},
        TextRow{"ForeignKeys", envelope(configurations(configuration("Gi3", "100") + configuration("Gi1", "100")) +
                                        statistics(statistic("Gi1") +
                                                   "<e:statistic><interface-name xmlns='urn:other'>Gi1</interface-name>"
                                                   "<e:interface-name>Gi3</e:interface-name></e:statistic>"))},
        TextRow{"KeysOfTwoSpellings", envelope(configurations(configuration("Gi&#51;", "100")) + statistics(three))},
        TextRow{"UnmappedTopNode", envelope(statistics(three) + "<hosts xmlns='urn:hosts'/>")},
        TextRow{"UnknownLeaves",
                envelope(statistics(statistic("Gi1", "<e:x>1</e:x>") + statistic("Gi2", "<e:x>1</e:x>") +
                                    statistic("Gi3", "<e:y>1</e:y>")))},
        TextRow{
            "ValuesThatClientsDoNotTake",
            envelope(statistics(statistic("Gi1", "<e:received8021q-frames>x</e:received8021q-frames>") +
                                statistic("Gi2",
                                          "<e:received8021q-frames>y</e:received8021q-frames><e:received-good-bytes>z"
                                          "</e:received-good-bytes>")))},
        TextRow{"DeviceError", envelope("<rpc-error><error-message>busy</error-message></rpc-error>")},
        TextRow{"TextBetweenEntries", envelope(statistics(three + "loose"))},
        TextRow{"NotClosed", "<rpc-reply xmlns='urn:ietf:params:xml:ns:netconf:base:1.0'><data>" + statistics(three)},
        TextRow{"WrongEndTag", envelope(statistics(three) + "</nothing>")},
        TextRow{"SecondRoot", statistics(three) + statistics(three)},
        TextRow{"DocumentType", envelope(statistics(three) + "<!DOCTYPE a>")},
        TextRow{"BadByteLateOn", envelope(statistics(three + statistic("\xff")))},
        TextRow{"UnfinishedComment", envelope(statistics(three + "<!-- ") + statistics(""))}),
    [](const auto &row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Json, ReplyStreamText,
    testing::Values(
        TextRow{"NoData", "{}"}, TextRow{"NoEntries", json_statistics("")},
        TextRow{"Entries",
                json_statistics(json_statistic("Gi1") + "," + json_statistic("Gi2") + " , " + json_statistic("Gi3"))},
        TextRow{"BracesInTexts", json_statistics(json_statistic("Gi{1\\\\") + "," + json_statistic("\\\"]}") + "," +
                                                 json_statistic("}"))},
        TextRow{"BackslashBeforeBraces", json_statistics(json_statistic("Gi1\\\\") + "," + json_statistic("Gi},{2"))},
        TextRow{"EntryTwice",
                json_statistics(json_statistic("Gi1") + "," + json_statistic("Gi2") + "," + json_statistic("Gi1"))},
        TextRow{"MemberTwice",
                R"({"Zemlo-QUARN-drivers-media-eth-oper:ethernet-interface": {"statistics": {"statistic": [)" +
                    json_statistic("Gi1") + "," + json_statistic("Gi2") + R"(]}, "statistics": {}}})"},
        TextRow{"EscapedMemberTwice",
                R"({"Zemlo-QUARN-drivers-media-eth-oper:ethernet-interface": {"statistics": {"statistic": [)" +
                    json_statistic("Gi1") + "," + json_statistic("Gi2") + R"(]}, "st\u0061tistics": {}}})"},
        TextRow{"TwoCommas", json_statistics(json_statistic("Gi1") + ",," + json_statistic("Gi2"))},
        TextRow{"CommaAtTheEnd", json_statistics(json_statistic("Gi1") + "," + json_statistic("Gi2") + ",")},
        TextRow{"NoComma", json_statistics(json_statistic("Gi1") + json_statistic("Gi2"))},
        TextRow{"NotClosed",
                R"({"Zemlo-QUARN-drivers-media-eth-oper:ethernet-interface": {"statistics": {"statistic": [)" +
                    json_statistic("Gi1") + "," + json_statistic("Gi2")},
        TextRow{"TwoDocuments", json_statistics(json_statistic("Gi1")) + json_statistics(json_statistic("Gi2"))},
        TextRow{"NumberAsEntry", json_statistics(json_statistic("Gi1") + ", 5, " + json_statistic("Gi2"))}),
    [](const auto &row) { return row.param.name; });

struct OptionsRow {
  const char *name;
  yfw::stream_options options;
};

class ReplyStreamOptions : public testing::TestWithParam<OptionsRow> {};

TEST_P(ReplyStreamOptions, GivesTheSameAsTheWhole) {
  const std::string both = configurations(configuration("Gi1", "100") + configuration("Gi2", "abc"));
  expect_same(envelope(statistics(three)), GetParam().options);
  expect_same(envelope(both), GetParam().options);
  expect_same(envelope(both + statistics(three)), GetParam().options);
}

INSTANTIATE_TEST_SUITE_P(All, ReplyStreamOptions,
                         testing::Values(OptionsRow{"ToJson", {{}, yfw::data_format::json}},
                                         OptionsRow{"OneEntry", {{yfw::content::all, {"Gi2"}}, {}}},
                                         OptionsRow{"EntriesThatAreNotThere",
                                                    {{yfw::content::all, {"Gi9", "Gi3"}}, {}}},
                                         OptionsRow{"Config", {{yfw::content::config, {}}, {}}},
                                         OptionsRow{"State", {{yfw::content::nonconfig, {}}, {}}}),
                         [](const auto &row) { return row.param.name; });

TEST(ReplyStream, ComparesEntriesInsideOthersWithinTheirs) {
  const auto label = [](const std::string &name) {
    return "<label xmlns='urn:example:labels'><name>" + name + "</name></label>";
  };
  const std::string first = statistic("Gi1", label("a") + label("b"));
  const std::string same_labels = envelope(statistics(first + statistic("Gi2", label("b") + label("a"))));
  const std::string label_twice = envelope(statistics(first + statistic("Gi2", label("b") + label("b"))));
  expect_same(same_labels);
  expect_same(label_twice);
  EXPECT_NE(in_one_chunk(same_labels, {}).find("<name>Gi2</name>"), std::string::npos);
  EXPECT_NE(in_one_chunk(label_twice, {}).find("'label' appears twice"), std::string::npos);
}

// More entries than chunks in work, so that results must wait for each other.
TEST(ReplyStream, KeepsTheOrderOfManyPieces) {
  std::string entries;
  for (int i = 0; i < 500; ++i) {
    entries += statistic("Gi" + std::to_string(i));
  }
  expect_same(envelope(statistics(entries)));
}

}  // namespace
