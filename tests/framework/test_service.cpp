// The whole way with the Ethernet mapping, and one of a leaf-list: what clients get, and what RFC 6241 says of their
// edits.
#include <gtest/gtest.h>

#include <sstream>
#include <utility>

#include "ethernet.hpp"
#include "library.hpp"
#include "yfw/mapping_service.hpp"
#include "yfw/memory_device.hpp"
#include "yfw/message.hpp"
#include "yfw/trace.hpp"
#include "yfw/writer.hpp"

namespace {

// OpenConfig can tell the flow control "bidirectional", but not "ingress".
yfw::memory_device ports(const std::string &flow_control = "ingress") {
  return yfw::memory_device(yfw::document::read(
      R"({"Zemlo-QUARN-interface-cfg:interface-configurations": {"interface-configuration": [
            {"interface-name": "Gi1", "Zemlo-QUARN-mdrv-lib-cfg:mac-addr": "02:00:00:00:00:01",
             "Zemlo-QUARN-drivers-media-eth-cfg:ethernet": {"duplex": "full", "speed": "100"}},
            {"interface-name": "Gi2", "Zemlo-QUARN-drivers-media-eth-cfg:ethernet":
              {"duplex": "half", "auto-negotiation": "override", "flow-control": ")" +
          flow_control + R"("}}]}})",
      "ports", modules()));
}

std::string config_of(const std::string &interface, const std::string &leaves) {
  return "<interface><name>" + interface +
         "</name><ethernet xmlns=\"http://openconfig.net/yang/interfaces/ethernet\">" + "<config>" + leaves +
         "</config></ethernet></interface>";
}

std::string message(const std::string &parameters, const std::string &interfaces) {
  return "<edit-config xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\" "
         "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\">" +
         parameters + "<config><interfaces xmlns=\"http://openconfig.net/yang/interfaces\">" + interfaces +
         "</interfaces></config></edit-config>";
}

std::string compact(const yfw::data_tree &tree) {
  std::ostringstream text;
  write_json(text, tree, {.pretty = false});
  return text.str();
}

// ---- edits

struct ServiceEditRow {
  const char *name;
  std::string edit;
  const char *result;  // "last path name: before -> after" of each change, or the tag and what the error says
};

class ServiceEdit : public testing::TestWithParam<ServiceEditRow> {};

std::string words(const yfw::device_change &change) {
  return change.path.substr(change.path.rfind('/') + 1) + ": " + change.before.value_or("none") + " -> " +
         change.after.value_or("none") + "; ";
}

TEST_P(ServiceEdit, DoesWhatTheClientSays) {
  yfw::memory_device device = ports();
  const std::string before = device.text();
  yfw::trace_log log;
  std::string result;
  try {
    yfw::document request = yfw::document::read(GetParam().edit, "", modules());
    const auto client = read_client_request(request, yfw::client_operation::edit);
    for (const yfw::device_change &change :
         yfw::mapping_service(mapping(), device, log).edit(request, client).changes) {
      result += words(change);
    }
  } catch (const yfw::client_error &fault) {
    result = std::string(to_string(fault.tag())) + " " + fault.bad_element() + "|" + fault.text();
    EXPECT_EQ(before, device.text()) << "changed by an edit that failed";
  }
  EXPECT_EQ(GetParam().result, result);
}

constexpr const char *none = "<default-operation>none</default-operation>";

INSTANTIATE_TEST_SUITE_P(
    Effects, ServiceEdit,
    testing::Values(
        ServiceEditRow{"Merge", message("", config_of("Gi1", "<port-speed>SPEED_1GB</port-speed>")),
                       "speed: 100 -> 1000; "},
        ServiceEditRow{"MergeMakesInterface", message("", config_of("Gi3", "<duplex-mode>HALF</duplex-mode>")),
                       "interface-configuration[interface-name='Gi3']: none -> ; duplex: none -> half; "},
        // Natively this is a strict delete of what is not there.
        ServiceEditRow{"MergeOfAbsence",
                       message("", config_of("Gi1", "<enable-flow-control>false</enable-flow-control>")), ""},
        // Natively this is a strict create of what is there.
        ServiceEditRow{"RemoveOfDefault", message("", config_of("Gi2", "<auto-negotiate nc:operation='remove'/>")), ""},
        ServiceEditRow{"Create",
                       message("", config_of("Gi1",
                                             "<enable-flow-control nc:operation='create'>true"
                                             "</enable-flow-control>")),
                       "flow-control: none -> bidirectional; "},
        ServiceEditRow{"Delete", message("", config_of("Gi1", "<port-speed nc:operation='delete'/>")),
                       "speed: 100 -> none; "},
        ServiceEditRow{"RemoveAbsent", message("", config_of("Gi9", "<port-speed nc:operation='remove'/>")), ""},
        // Natively this is a set, which would make the interface.
        ServiceEditRow{"RemoveBySettingAbsent",
                       message("", config_of("Gi9", "<auto-negotiate nc:operation='remove'/>")), ""},
        ServiceEditRow{"ReplaceOfContainer",
                       "<data xmlns='urn:ietf:params:xml:ns:netconf:base:1.0' "
                       "xmlns:nc='urn:ietf:params:xml:ns:netconf:base:1.0'><interfaces "
                       "xmlns='http://openconfig.net/yang/interfaces'><interface><name>Gi1</name><ethernet "
                       "xmlns='http://openconfig.net/yang/interfaces/ethernet'><config nc:operation='replace'>"
                       "<auto-negotiate>false</auto-negotiate><duplex-mode>HALF</duplex-mode></config></ethernet>"
                       "</interface></interfaces></data>",
                       "mac-addr: 02:00:00:00:00:01 -> none; duplex: full -> half; speed: 100 -> none; "},
        ServiceEditRow{"DefaultNone",
                       message(none, config_of("Gi1",
                                               "<duplex-mode>HALF</duplex-mode>"
                                               "<port-speed nc:operation='merge'>SPEED_1GB"
                                               "</port-speed>")),
                       "speed: 100 -> 1000; "},
        ServiceEditRow{"ReplaceOfEmptyContainer",
                       message("",
                               "<interface><name>Gi1</name><ethernet "
                               "xmlns='http://openconfig.net/yang/interfaces/ethernet'><config nc:operation='replace'/>"
                               "</ethernet></interface>"),
                       "mac-addr: 02:00:00:00:00:01 -> none; auto-negotiation: none -> override; duplex: full -> none; "
                       "speed: 100 -> none; "},
        ServiceEditRow{
            "CreateInterface", message("", "<interface nc:operation='create'><name>Gi3</name></interface>"),
            "interface-configuration[interface-name='Gi3']: none -> ; auto-negotiation: none -> override; "}),
    [](const auto &each) { return std::string(each.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Errors, ServiceEdit,
    testing::Values(
        ServiceEditRow{"CreatePresent",
                       message("", config_of("Gi1", "<duplex-mode nc:operation='create'>FULL</duplex-mode>")),
                       "data-exists |cannot be created: it already exists"},
        // The device has no item for it, and reads as "false".
        ServiceEditRow{"CreateOfWhatReadsAsPresent",
                       message("", config_of("Gi1", "<auto-negotiate nc:operation='create'>true</auto-negotiate>")),
                       "data-exists |cannot be created: it already exists"},
        // What is there above counts, not only what is asked for below.
        ServiceEditRow{"CreateAboveCreate",
                       message("",
                               "<interface nc:operation='create'><name>Gi1</name><ethernet "
                               "xmlns='http://openconfig.net/yang/interfaces/ethernet'><config nc:operation='create'>"
                               "<enable-flow-control nc:operation='create'>true</enable-flow-control></config>"
                               "</ethernet></interface>"),
                       "data-exists |cannot be created: it already exists"},
        ServiceEditRow{"CreateContainerAboveCreate",
                       message("",
                               "<interface><name>Gi1</name><ethernet "
                               "xmlns='http://openconfig.net/yang/interfaces/ethernet'><config nc:operation='create'>"
                               "<enable-flow-control nc:operation='create'>true</enable-flow-control></config>"
                               "</ethernet></interface>"),
                       "data-exists |cannot be created: it already exists"},
        ServiceEditRow{"CreateInterfacePresent",
                       message("", "<interface nc:operation='create'><name>Gi1</name></interface>"),
                       "data-exists |cannot be created: it already exists"},
        ServiceEditRow{"DeleteAbsent", message("", config_of("Gi1", "<enable-flow-control nc:operation='delete'/>")),
                       "data-missing |cannot be deleted: it does not exist; 'remove' accepts that"},
        // The item "override" reads as the leaf's default, which is its absence.
        ServiceEditRow{"DeleteOfWhatReadsAsAbsent",
                       message("", config_of("Gi2", "<auto-negotiate nc:operation='delete'/>")),
                       "data-missing |cannot be deleted: it does not exist; 'remove' accepts that"},
        ServiceEditRow{"NoneInAbsentInterface",
                       message(none, config_of("Gi9", "<port-speed nc:operation='merge'>SPEED_1GB</port-speed>")),
                       "data-missing |does not exist, and operation 'none' does not create it"},
        // The first leaf is good: the edit is whole or nothing.
        ServiceEditRow{
            "NotInYang",
            message("", config_of("Gi1", "<duplex-mode>HALF</duplex-mode><port-speed>SPEED_3MB</port-speed>")),
            "invalid-value |invalid value 'SPEED_3MB', expected 'SPEED_10MB', 'SPEED_100MB', "
            "'SPEED_1GB', 'SPEED_2500MB', 'SPEED_5GB', 'SPEED_10GB', 'SPEED_25GB', 'SPEED_40GB', "
            "'SPEED_50GB', 'SPEED_100GB', 'SPEED_200GB', 'SPEED_400GB', 'SPEED_UNKNOWN'"},
        ServiceEditRow{
            "NotInMapping",
            message("", config_of("Gi1", "<duplex-mode>HALF</duplex-mode><port-speed>SPEED_5GB</port-speed>")),
            "invalid-value |unmapped value 'SPEED_5GB', expected 'SPEED_10MB', 'SPEED_100MB', "
            "'SPEED_1GB'"},
        ServiceEditRow{
            "UnknownElement", message("", config_of("Gi1", "<duplex>HALF</duplex>")),
            "unknown-element duplex|'duplex' of namespace 'http://openconfig.net/yang/interfaces/ethernet' is "
            "not a child of '/interfaces/interface/ethernet/config'"},
        ServiceEditRow{"UnknownNamespace", message("", "<interface><name>Gi1</name><x xmlns='urn:x'/></interface>"),
                       "unknown-namespace x|'x' of namespace 'urn:x' is not a child of '/interfaces/interface'"},
        ServiceEditRow{"MissingKey", message("", "<interface/>"), "missing-element name|key 'name' is missing"},
        ServiceEditRow{"Twice",
                       message("", config_of("Gi1", "<duplex-mode>HALF</duplex-mode><duplex-mode>FULL</duplex-mode>")),
                       "bad-element duplex-mode|'duplex-mode' appears twice"},
        ServiceEditRow{"NotMapped",
                       message("", config_of("Gi1",
                                             "<aggregate-id xmlns='http://openconfig.net/yang/"
                                             "interfaces/aggregate'>Ae1</aggregate-id>")),
                       "operation-not-supported |is not mapped"},
        ServiceEditRow{"DeleteInterface", message("", "<interface nc:operation='delete'><name>Gi1</name></interface>"),
                       "operation-not-supported |operation 'delete' is not supported here; put it on a mapped node "
                       "below"},
        ServiceEditRow{"CreateAboveInterface",
                       "<interfaces xmlns='http://openconfig.net/yang/interfaces' "
                       "xmlns:nc='urn:ietf:params:xml:ns:netconf:base:1.0' nc:operation='create'/>",
                       "operation-not-supported |operation 'create' is not supported here; put it on a mapped node "
                       "below"},
        ServiceEditRow{"CreateDeepInDeleted",
                       message("",
                               "<interface><name>Gi1</name><ethernet "
                               "xmlns='http://openconfig.net/yang/interfaces/ethernet' nc:operation='remove'><config>"
                               "<duplex-mode nc:operation='create'>HALF</duplex-mode></config></ethernet></interface>"),
                       "bad-element duplex-mode|operation 'create' is not allowed inside a deleted node"},
        ServiceEditRow{"CreateKey", message("", "<interface><name nc:operation='create'>Gi1</name></interface>"),
                       "bad-element name|is a key; put operation 'create' on its list entry"},
        ServiceEditRow{"ContinueOnError",
                       message("<error-option>continue-on-error</error-option>", config_of("Gi1", "")),
                       "operation-not-supported |error-option 'continue-on-error' is not supported: an edit is "
                       "applied as a whole or not at all, as 'rollback-on-error' says"}),
    [](const auto &each) { return std::string(each.param.name); });

TEST(ServiceEdit, ChangesNothingWithTestOnly) {
  yfw::memory_device device = ports();
  const std::string before = device.text();
  yfw::trace_log log;
  yfw::document request = yfw::document::read(
      message("<test-option>test-only</test-option>", config_of("Gi1", "<duplex-mode>HALF</duplex-mode>")), "",
      modules());
  const auto client = read_client_request(request, yfw::client_operation::edit);
  EXPECT_EQ(1U, yfw::mapping_service(mapping(), device, log).edit(request, client).changes.size());
  EXPECT_EQ(before, device.text());
}

// With a mapping that has a leaf-list: its entries 1 and 2 are there.
struct LeafListRow {
  const char *name, *library;  // what is below it
  const char *result;
};

class LeafListEdit : public testing::TestWithParam<LeafListRow> {};

TEST_P(LeafListEdit, LooksForTheEntryOfThatValue) {
  yfw::memory_device device =
      yfw::memory_device(yfw::document::read(R"({"library:library":{"shelf":[1,2]}})", "device", library()));
  const yfw::plugin shelves = yfw::plugin::load(YFW_TEST_SHELVES);
  yfw::trace_log log;
  std::string result;
  try {
    yfw::document request =
        yfw::document::read(R"({"library:library":{)" + std::string(GetParam().library) + "}}", "edit", library());
    const auto client = read_client_request(request, yfw::client_operation::edit);
    for (const yfw::device_change &change : yfw::mapping_service(shelves, device, log).edit(request, client).changes) {
      result += words(change);
    }
  } catch (const yfw::client_error &fault) {
    result = to_string(fault.tag());
  }
  EXPECT_EQ(GetParam().result, result);
}

#define OPERATION(word) R"([{"ietf-netconf:operation":")" word R"("}])"

INSTANTIATE_TEST_SUITE_P(
    Rows, LeafListEdit,
    testing::Values(LeafListRow{"Merge", R"("shelf":[2,3,4])", "shelf[.='3']: none -> 3; shelf[.='4']: none -> 4; "},
                    LeafListRow{"Twice", R"("shelf":[3,3])", "bad-element"},
                    LeafListRow{"CreateAbsent", R"("shelf":[3],"@shelf":)" OPERATION("create"),
                                "shelf[.='3']: none -> 3; "},
                    LeafListRow{"CreatePresent", R"("shelf":[2],"@shelf":)" OPERATION("create"), "data-exists"},
                    LeafListRow{"DeleteAbsent", R"("shelf":[3],"@shelf":)" OPERATION("delete"), "data-missing"}),
    [](const auto &each) { return std::string(each.param.name); });

TEST(LeafListEdit, OfANodeWithoutValueIsRejected) {
  yfw::memory_device device = yfw::memory_device(library());
  const yfw::plugin shelves = yfw::plugin::load(YFW_TEST_SHELVES);
  yfw::trace_log log;
  yfw::document request = yfw::document::read(
      "<library xmlns='urn:test:library' xmlns:nc='urn:ietf:params:xml:ns:netconf:base:1.0'>"
      "<shelf nc:operation='delete'/></library>",
      "edit", library());
  const auto client = read_client_request(request, yfw::client_operation::edit);
  EXPECT_NE("", thrown_by([&] { (void)yfw::mapping_service(shelves, device, log).edit(request, client); }));
}

// A device that counts what is asked of it, and that may answer every read with the same text.
class counting_device : public yfw::native_device {
 public:
  explicit counting_device(yfw::native_device &inside, std::string answer = "")
      : inside_(inside), answer_(std::move(answer)) {}

  const std::string &name() const override {
    return inside_.name();
  }
  const yfw::schema &modules() const override {
    return inside_.modules();
  }
  yfw::device_capabilities capabilities() const override {
    return inside_.capabilities();
  }
  yfw::document read(std::span<const yfw::native_operation> operations, yfw::datastore from) const override {
    ++reads;
    operations_read += operations.size();
    return answer_.empty() ? inside_.read(operations, from) : yfw::document::read(answer_, "device", modules());
  }
  std::unique_ptr<yfw::native_transaction> begin(yfw::datastore to, yfw::transaction_use use) override {
    ++transactions;
    return inside_.begin(to, use);
  }

  mutable size_t reads = 0, operations_read = 0;
  size_t transactions = 0;

 private:
  yfw::native_device &inside_;
  const std::string answer_;
};

TEST(ServiceCost, OfAnEditIsOneReadAndOneTransactionWhateverItsSize) {
  for (const size_t count : {size_t{1}, size_t{100}, size_t{1000}}) {
    yfw::memory_device inside = ports();
    counting_device device(inside);
    yfw::trace_log log;
    size_t of_each = 0;
    for (const std::string operation : {"create", "delete"}) {
      std::string interfaces;
      for (size_t i = 0; i < count; ++i) {
        interfaces += config_of("X" + std::to_string(i),
                                operation == "create"
                                    ? "<port-speed nc:operation='create'>SPEED_1GB</port-speed>"
                                      "<duplex-mode nc:operation='create'>FULL</duplex-mode>"
                                    : "<port-speed nc:operation='delete'/><duplex-mode nc:operation='delete'/>");
      }
      yfw::document request = yfw::document::read(message("", interfaces), "", modules());
      const auto client = read_client_request(request, yfw::client_operation::edit);
      device.reads = device.transactions = device.operations_read = 0;
      const auto changes = yfw::mapping_service(mapping(), device, log).edit(request, client).changes;
      EXPECT_EQ((operation == "create" ? 3 : 2) * count, changes.size());
      EXPECT_EQ(1U, device.reads);
      EXPECT_EQ(1U, device.transactions);
      of_each = device.operations_read / count;
      EXPECT_EQ(of_each * count, device.operations_read);
      EXPECT_GE(4U, of_each);
    }
    EXPECT_LT(0U, of_each);
  }
}

// What is asked for above is asked for as a whole, whatever is asked for below.
TEST(ServiceCost, OfAQuestionIncludesThoseBelow) {
  const auto operations_read = [](const std::string &leaf_operation) {
    yfw::memory_device inside = ports();
    counting_device device(inside);
    yfw::trace_log log;
    yfw::document request = yfw::document::read(
        message("",
                "<interface><name>Gi1</name><ethernet xmlns='http://openconfig.net/yang/interfaces/ethernet'>"
                "<config nc:operation='create'><duplex-mode" +
                    leaf_operation + ">FULL</duplex-mode></config></ethernet></interface>"),
        "", modules());
    const auto client = read_client_request(request, yfw::client_operation::edit);
    EXPECT_NE("", thrown_by([&] { (void)yfw::mapping_service(mapping(), device, log).edit(request, client); }));
    return device.operations_read;
  };
  EXPECT_LT(1U, operations_read(""));
  EXPECT_EQ(operations_read(""), operations_read(" nc:operation='create'"));
}

TEST(ServiceCost, OfAnEditWithoutConditionsIsNoRead) {
  yfw::memory_device inside = ports();
  counting_device device(inside);
  yfw::trace_log log;
  yfw::document request =
      yfw::document::read(message("", config_of("Gi1", "<duplex-mode>HALF</duplex-mode>")), "", modules());
  const auto client = read_client_request(request, yfw::client_operation::edit);
  EXPECT_EQ(1U, yfw::mapping_service(mapping(), device, log).edit(request, client).changes.size());
  EXPECT_EQ(0U, device.reads);
  EXPECT_EQ(1U, device.transactions);
}

// Gets and edits report it in the same way.
TEST(ServiceErrors, OfAnAnswerThatCannotBeTranslatedAreTheClients) {
  std::string refused;
  for (int i = 0; i < 300; ++i) {
    refused += "<shelf>13</shelf>";
  }
  yfw::memory_device inside(library());
  counting_device device(inside, "<library xmlns='urn:test:library'>" + refused + "</library>");
  const yfw::plugin shelves = yfw::plugin::load(YFW_TEST_SHELVES);
  yfw::trace_log log;
  const yfw::mapping_service service(shelves, device, log);
  const auto tag_of = [](auto act) {
    try {
      act();
    } catch (const yfw::client_error &fault) {
      return std::string(to_string(fault.tag()));
    } catch (const yfw::error &fault) {
      return std::string("no client's: ") + fault.what();
    }
    return std::string();
  };
  EXPECT_EQ("operation-failed",
            tag_of([&] { (void)service.find("/library:library", yfw::client_operation::get, yfw::content::all); }));
  EXPECT_EQ("operation-failed",
            tag_of([&] { (void)service.edit_node("/library:library/shelf", "3", YFW_OPERATION_CREATE); }));
}

// Each value that is refused ends a walk, and the next one goes without it: with very many of them that would take
// long.
TEST(Reply, WalksAgainWithoutARefusedValueButNotForever) {
  const auto notes_on = [](unsigned refused) {
    std::string text = "<library xmlns='urn:test:library'>";
    for (unsigned i = 0; i < refused; ++i) {
      text += "<shelf>13</shelf>";
    }
    yfw::document native = yfw::document::read(text + "<shelf>1</shelf></library>", "device", library());
    const yfw::plugin shelves = yfw::plugin::load(YFW_TEST_SHELVES);
    yfw::trace_log log;
    const yfw::reply reply = translate_reply(native, shelves, {}, log);
    EXPECT_EQ(R"({"library:library":{"shelf":[1]}})", compact(reply.data));
    return reply.notes.size();
  };
  EXPECT_EQ(1U, notes_on(256));  // one line says all of them
  EXPECT_EQ("device:1: /library/shelf: rejected by the plug-in", thrown_by([&] { (void)notes_on(257); }));
}

TEST(Reply, TellsEntriesApartByEachKey) {
  const auto outcome_of = [](const std::string &title, const std::string &edition) {
    yfw::document native = yfw::document::read(
        "<library xmlns='urn:test:library'><book><title>A</title><edition>1 2</edition></book><book><title>" + title +
            "</title><edition>" + edition + "</edition></book></library>",
        "device", library());
    const yfw::plugin shelves = yfw::plugin::load(YFW_TEST_SHELVES);
    yfw::trace_log log;
    return thrown_by([&] { (void)translate_reply(native, shelves, {}, log); });
  };
  EXPECT_EQ("", outcome_of("A 1", "2"));
  EXPECT_EQ("device:1: /library/book[title=\"A\"][edition=\"1 2\"]: 'book' appears twice", outcome_of("A", "1 2"));
}

// ---- reads

struct ServiceGetRow {
  const char *name, *filter, *answer;  // JSON: the interfaces that are asked for, and that are found
};

class ServiceGet : public testing::TestWithParam<ServiceGetRow> {};

TEST_P(ServiceGet, AnswersWhatIsAskedAndNoMore) {
  yfw::trace_log log;
  const std::string filter =
      "{\"openconfig-interfaces:interfaces\":{\"interface\":" + std::string(GetParam().filter) + "}}";
  yfw::document request = yfw::document::read(filter, "filter", modules());
  const auto client = read_client_request(request, yfw::client_operation::get);
  yfw::memory_device device = ports();
  const yfw::reply answer = yfw::mapping_service(mapping(), device, log).get(request, client, yfw::content::all);
  const std::string found = GetParam().answer;
  EXPECT_EQ(found.empty() ? "{}" : "{\"openconfig-interfaces:interfaces\":{\"interface\":" + found + "}}",
            compact(answer.data));
  EXPECT_TRUE(answer.notes.empty()) << to_string(answer.notes.front());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ServiceGet,
    testing::Values(
        // Flow control is not asked of the device: it could not be told.
        ServiceGetRow{"OneLeaf", R"([{"openconfig-if-ethernet:ethernet":{"config":{"duplex-mode":null}}}])",
                      R"([{"name":"Gi1","openconfig-if-ethernet:ethernet":{"config":{"duplex-mode":"FULL"}}},)"
                      R"({"name":"Gi2","openconfig-if-ethernet:ethernet":{"config":{"duplex-mode":"HALF"}}}])"},
        ServiceGetRow{"OfOneEntry",
                      R"([{"name":"Gi2","openconfig-if-ethernet:ethernet":{"config":{"duplex-mode":null}}}])",
                      R"([{"name":"Gi2","openconfig-if-ethernet:ethernet":{"config":{"duplex-mode":"HALF"}}}])"},
        ServiceGetRow{"OfTwoEntries",
                      R"([{"name":"Gi2","openconfig-if-ethernet:ethernet":{"config":{"duplex-mode":null}}},)"
                      R"({"name":"Gi1","openconfig-if-ethernet:ethernet":{"config":{"port-speed":null}}}])",
                      R"([{"name":"Gi2","openconfig-if-ethernet:ethernet":{"config":{"duplex-mode":"HALF"}}},)"
                      R"({"name":"Gi1","openconfig-if-ethernet:ethernet":{"config":{"port-speed":"SPEED_100MB"}}}])"},
        ServiceGetRow{"AbsentLeafOfMatchedEntry",
                      R"([{"name":"Gi2","openconfig-if-ethernet:ethernet":{"config":{"port-speed":null}}}])",
                      R"([{"name":"Gi2"}])"},
        ServiceGetRow{"AbsentEntry", R"([{"name":"Gi9"}])", ""},
        ServiceGetRow{"Keys", R"([{"name":null}])", R"([{"name":"Gi1"},{"name":"Gi2"}])"},
        ServiceGetRow{"ByValue",
                      R"([{"openconfig-if-ethernet:ethernet":{"config":{"duplex-mode":"FULL","port-speed":null}}}])",
                      R"([{"name":"Gi1","openconfig-if-ethernet:ethernet":)"
                      R"({"config":{"duplex-mode":"FULL","port-speed":"SPEED_100MB"}}}])"},
        ServiceGetRow{"ByValueInAnotherForm",
                      R"([{"openconfig-if-ethernet:ethernet":)"
                      R"({"config":{"port-speed":"openconfig-if-ethernet:SPEED_100MB","duplex-mode":null}}}])",
                      R"([{"name":"Gi1","openconfig-if-ethernet:ethernet":)"
                      R"({"config":{"port-speed":"SPEED_100MB","duplex-mode":"FULL"}}}])"},
        ServiceGetRow{
            "WholeByKey", R"([{"name":"Gi1"}])",
            R"([{"name":"Gi1","openconfig-if-ethernet:ethernet":{"config":{"mac-address":"02:00:00:00:00:01",)"
            R"("duplex-mode":"FULL","port-speed":"SPEED_100MB","auto-negotiate":false},)"
            R"("state":{"mac-address":"02:00:00:00:00:01","duplex-mode":"FULL","port-speed":"SPEED_100MB",)"
            R"("auto-negotiate":false}}}])"}),
    [](const auto &each) { return std::string(each.param.name); });

// A value that the mapping cannot tell is no reason to keep the others from the client.
TEST(ServiceGet, LeavesOutWhatTheMappingCannotTell) {
  yfw::trace_log log;
  yfw::memory_device device = ports();
  const yfw::reply answer =
      yfw::mapping_service(mapping(), device, log)
          .find("/interfaces/interface[name='Gi2']/ethernet/config", yfw::client_operation::get, yfw::content::all);
  const std::string text = compact(answer.data);
  EXPECT_NE(text.find("duplex-mode"), std::string::npos) << text;
  EXPECT_EQ(text.find("enable-flow-control"), std::string::npos) << text;
  ASSERT_EQ(answer.notes.size(), 1U);
  EXPECT_EQ(
      to_string(answer.notes[0]),
      "ports: /interface-configurations/interface-configuration[interface-name=\"Gi2\"]/ethernet/flow-control: is "
      "omitted: Unmappable input value 'ingress'");
}

struct XpathRow {
  const char *name, *xpath, *answer;  // JSON, or "tag|text" of the error
};

class ServiceFind : public testing::TestWithParam<XpathRow> {};

TEST_P(ServiceFind, SelectsByXpath) {
  yfw::trace_log log;
  yfw::memory_device device = ports("bidirectional");
  std::string answer;
  try {
    answer = compact(yfw::mapping_service(mapping(), device, log)
                         .find(GetParam().xpath, yfw::client_operation::get_config, yfw::content::all)
                         .data);
  } catch (const yfw::client_error &fault) {
    answer = std::string(to_string(fault.tag())) + "|" + fault.text();
  }
  EXPECT_EQ(GetParam().answer, answer);
}

#define INTERFACE(text) "{\"openconfig-interfaces:interfaces\":{\"interface\":[" text "]}}"
#define DUPLEX(name, mode) \
  "{\"name\":\"" name "\",\"openconfig-if-ethernet:ethernet\":{\"config\":{\"duplex-mode\":\"" mode "\"}}}"

INSTANTIATE_TEST_SUITE_P(
    Rows, ServiceFind,
    testing::Values(
        XpathRow{"Plain", "/interfaces/interface[name=\"Gi1\"]/ethernet/config/duplex-mode",
                 INTERFACE(DUPLEX("Gi1", "FULL"))},
        XpathRow{"PrefixOfModule", "/oc-if:interfaces/oc-if:interface/oc-eth:ethernet/oc-eth:config/oc-eth:duplex-mode",
                 INTERFACE(DUPLEX("Gi1", "FULL") "," DUPLEX("Gi2", "HALF"))},
        XpathRow{"ByIdentity", "/interfaces/interface/ethernet/config[port-speed='SPEED_100MB']/duplex-mode",
                 INTERFACE(DUPLEX("Gi1", "FULL"))},
        XpathRow{"ByPosition", "/interfaces/interface[2]/name", INTERFACE("{\"name\":\"Gi2\"}")},
        XpathRow{"OneName", "/interfaces/interface[name='Gi2']/name", INTERFACE("{\"name\":\"Gi2\"}")},
        XpathRow{"UpAgain", "/interfaces/interface[name='Gi1']/name/../name", INTERFACE("{\"name\":\"Gi1\"}")},
        XpathRow{"OneOrTheOther",
                 "/interfaces/interface[name='Gi1']/ethernet/config/duplex-mode | "
                 "/interfaces/interface[name='Gi2']/ethernet/config/duplex-mode",
                 INTERFACE(DUPLEX("Gi1", "FULL") "," DUPLEX("Gi2", "HALF"))},
        XpathRow{"ByAnotherEntry", "/interfaces/interface[name='Gi1'][/interfaces/interface[name='Gi2']]/name",
                 INTERFACE("{\"name\":\"Gi1\"}")},
        XpathRow{"Nothing", "/interfaces/interface[name='Gi9']/ethernet/config", "{}"},
        XpathRow{"UnknownName", "/interfaces/interfce",
                 "unknown-element|'interfce' is not a child of '/interfaces'; did you mean 'interface'?"},
        XpathRow{"UnknownPrefix", "/x:interfaces",
                 "unknown-element|'x:interfaces' is not a top-level node of the modules; 'interfaces' is defined in "
                 "module 'openconfig-interfaces'"},
        XpathRow{"Relative", "interfaces",
                 "invalid-value|'interfaces' is not an absolute path, expected '/' at the beginning"},
        XpathRow{"Axis", "/interfaces/child::interface",
                 "invalid-value|unsupported XPath '/interfaces/child::interface': axis 'child', expected "
                 "'/', '//' or '..'"},
        XpathRow{"OpenQuote", "/interfaces/interface[name='x]",
                 "invalid-value|unsupported XPath '/interfaces/interface[name='x]': a quote is not closed"}),
    [](const auto &each) { return std::string(each.param.name); });

}  // namespace
