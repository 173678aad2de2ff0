// The embedded device: what reads select, what edits change, and what happens to its file.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <thread>
#include <tuple>

#include "library.hpp"
#include "yfw/file_device.hpp"
#include "yfw/memory_device.hpp"
#include "yfw/node.hpp"
#include "yfw/query.hpp"
#include "yfw/writer.hpp"

namespace {

namespace fs = std::filesystem;
using yfw::operation_kind;

constexpr const char *shelved =
    "<data xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><library xmlns=\"urn:test:library\">"
    "<name>Main</name><shelf>1</shelf><shelf>2</shelf>"
    "<book><title>Emma</title><edition>1</edition><binding>paper</binding><loan><reader>Ann</reader></loan></book>"
    "<book><title>Ulysses</title><edition>2</edition><binding>cloth</binding></book>"
    "<visit><minutes>5</minutes></visit><visit><minutes>7</minutes></visit>"
    "</library></data>";

yfw::memory_device device_of(const std::string &text) {
  return yfw::memory_device(yfw::document::read(text, "device", library()));
}

std::unique_ptr<yfw::native_transaction> edit_of(yfw::native_device &device) {
  return device.begin(yfw::datastore::running, yfw::transaction_use::commit);
}

void apply(yfw::native_transaction &edit, const yfw::native_operation &operation) {
  edit.apply({&operation, 1});
}

// The call on a path with keys; without them when `of_all`.
yfw::native_operation call(operation_kind kind, const std::string &path, std::optional<std::string> value = {},
                           uint32_t operation = YFW_OPERATION_MERGE, bool of_all = false) {
  yfw::native_operation made{kind, yfw::read_instance_path(path, library()), std::move(value), operation, nullptr};
  for (yfw::path_step &step : made.steps) {
    of_all ? step.keys.clear() : void();
  }
  return made;
}

const std::string emma = "/library:library/book[title='Emma'][edition='1']";
const std::string persuasion = "/library:library/book[title='Persuasion'][edition='1']";

// ---- select

struct SelectRow {
  const char *name;
  std::string path;
  bool of_all;
  std::optional<std::string> value;
  const char *selected;  // within library
};

class DeviceSelect : public testing::TestWithParam<SelectRow> {};

TEST_P(DeviceSelect, GivesWhatIsAsked) {
  const SelectRow &row = GetParam();
  const yfw::native_operation asked = call(operation_kind::read, row.path, row.value, YFW_OPERATION_MERGE, row.of_all);
  std::ostringstream text;
  write_xml(text, device_of(shelved).select({&asked, 1}), {.pretty = false});
  const std::string expected = row.selected;
  EXPECT_EQ(expected.empty() ? "" : "<library xmlns=\"urn:test:library\">" + expected + "</library>", text.str());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DeviceSelect,
    testing::Values(
        SelectRow{"Leaf", "/library:library/name", false, {}, "<name>Main</name>"},
        SelectRow{"AbsentLeaf", "/library:library/motto", false, {}, ""},
        SelectRow{"LeafList", "/library:library/shelf", false, {}, "<shelf>1</shelf><shelf>2</shelf>"},
        SelectRow{"LeafOfEntry",
                  emma + "/binding",
                  false,
                  {},
                  "<book><title>Emma</title><edition>1</edition><binding>paper</binding></book>"},
        SelectRow{
            "AbsentLeafOfEntry", emma + "/pages", false, {}, "<book><title>Emma</title><edition>1</edition></book>"},
        SelectRow{"AbsentEntry", persuasion + "/binding", false, {}, ""},
        SelectRow{"LeafOfAllEntries",
                  emma + "/binding",
                  true,
                  {},
                  "<book><title>Emma</title><edition>1</edition><binding>paper</binding></book>"
                  "<book><title>Ulysses</title><edition>2</edition><binding>cloth</binding></book>"},
        SelectRow{"KeyWithValue", emma + "/title", true, "Ulysses",
                  "<book><title>Ulysses</title><edition>2</edition></book>"},
        SelectRow{"Container",
                  emma + "/loan",
                  false,
                  {},
                  "<book><title>Emma</title><edition>1</edition><loan><reader>Ann</reader></loan></book>"},
        SelectRow{"ListWithoutKeys",
                  "/library:library/visit/minutes",
                  false,
                  {},
                  "<visit><minutes>5</minutes></visit><visit><minutes>7</minutes></visit>"}),
    [](const auto &each) { return std::string(each.param.name); });

TEST(DeviceSelect, GivesEachNodeOnce) {
  const yfw::native_operation asked[] = {call(operation_kind::read, emma + "/binding"),
                                         call(operation_kind::read, emma + "/binding"),
                                         call(operation_kind::read, emma + "/loan/reader")};
  std::ostringstream text;
  write_xml(text, device_of(shelved).select(asked), {.pretty = false});
  EXPECT_EQ(
      "<library xmlns=\"urn:test:library\"><book><title>Emma</title><edition>1</edition><binding>paper</binding>"
      "<loan><reader>Ann</reader></loan></book></library>",
      text.str());
}

// ---- apply

std::string words(const std::vector<yfw::device_change> &changes) {
  std::string text;
  for (const yfw::device_change &change : changes) {
    text += change.path + ": " + change.before.value_or("none") + " -> " + change.after.value_or("none") + "\n";
  }
  return text;
}

// Applies a call, and returns its error's tag or "".
std::string outcome_of(yfw::native_transaction &edit, const yfw::native_operation &call) {
  try {
    apply(edit, call);
    return {};
  } catch (const yfw::client_error &fault) {
    return std::string(to_string(fault.tag()));
  }
}

struct EditRow {
  const char *name;
  operation_kind kind;
  uint32_t operation;
  std::string path;
  std::optional<std::string> value;
  const char *result;  // changes, or the error's tag
};

class DeviceEdit : public testing::TestWithParam<EditRow> {};

TEST_P(DeviceEdit, ChangesWhatItSays) {
  const EditRow &row = GetParam();
  yfw::memory_device device = device_of(shelved);
  const std::string before = device.text();
  std::string result;
  try {
    const auto edit = edit_of(device);
    apply(*edit, call(row.kind, row.path, row.value, row.operation));
    result = words(*edit->effects());
    edit->commit();
  } catch (const yfw::client_error &fault) {
    result = to_string(fault.tag());
  }
  EXPECT_EQ(row.result, result);
  EXPECT_EQ(result.find("->") != std::string::npos, before != device.text());
}

// All that an edit changed comes back, and what is edited next is found.
TEST_P(DeviceEdit, UndoesWhatIsNotCommitted) {
  const EditRow &row = GetParam();
  yfw::memory_device device = device_of(shelved);
  const std::string before = device.text();
  for (const bool is_last : {false, true}) {
    const auto edit = edit_of(device);
    for (const auto &operation :
         {call(operation_kind::remove, emma, {}, YFW_OPERATION_REMOVE), call(operation_kind::set, emma + "/pages", "9"),
          call(operation_kind::set, persuasion + "/binding", "cloth"),
          call(operation_kind::set, "/library:library/stove", "true"),
          call(operation_kind::remove, "/library:library/name", {}, YFW_OPERATION_REMOVE)}) {
      is_last ? void() : apply(*edit, operation);
    }
    const std::string result = outcome_of(*edit, call(row.kind, row.path, row.value, row.operation));
    EXPECT_TRUE(!is_last || result.empty() || result == row.result) << result;
  }
  EXPECT_EQ(before, device.text());
  const yfw::native_operation asked = call(operation_kind::read, emma + "/binding");
  EXPECT_NE(nullptr, device.select({&asked, 1}).first());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DeviceEdit,
    testing::Values(
        EditRow{"MergeChanges", operation_kind::set, YFW_OPERATION_MERGE, emma + "/binding", "cloth",
                "/library/book[title='Emma'][edition='1']/binding: paper -> cloth\n"},
        EditRow{"MergeSame", operation_kind::set, YFW_OPERATION_MERGE, emma + "/binding", "paper", ""},
        EditRow{"MergeMakesEntry", operation_kind::set, YFW_OPERATION_MERGE, persuasion + "/loan/reader", "Bo",
                "/library/book[title='Persuasion'][edition='1']: none -> \n"
                "/library/book[title='Persuasion'][edition='1']/loan/reader: none -> Bo\n"},
        EditRow{"ReplaceChanges", operation_kind::set, YFW_OPERATION_REPLACE, "/library:library/name", "Annex",
                "/library/name: Main -> Annex\n"},
        EditRow{"CreateAbsent", operation_kind::set, YFW_OPERATION_CREATE, "/library:library/motto", "Read",
                "/library/motto: none -> Read\n"},
        EditRow{"CreatePresent", operation_kind::set, YFW_OPERATION_CREATE, "/library:library/name", "Main",
                "data-exists"},
        EditRow{"AddsToLeafList", operation_kind::set, YFW_OPERATION_MERGE, "/library:library/shelf", "3",
                "/library/shelf[.='3']: none -> 3\n"},
        EditRow{"DeletePresent",
                operation_kind::remove,
                YFW_OPERATION_DELETE,
                emma + "/binding",
                {},
                "/library/book[title='Emma'][edition='1']/binding: paper -> none\n"},
        EditRow{
            "DeleteAbsent", operation_kind::remove, YFW_OPERATION_DELETE, "/library:library/motto", {}, "data-missing"},
        EditRow{"DeleteInAbsentEntry",
                operation_kind::remove,
                YFW_OPERATION_DELETE,
                persuasion + "/binding",
                {},
                "data-missing"},
        EditRow{"RemoveAbsent", operation_kind::remove, YFW_OPERATION_REMOVE, "/library:library/motto", {}, ""},
        EditRow{"RemoveInAbsentEntryMakesNone",
                operation_kind::remove,
                YFW_OPERATION_REMOVE,
                persuasion + "/binding",
                {},
                ""},
        EditRow{"RemoveEntry",
                operation_kind::remove,
                YFW_OPERATION_REMOVE,
                emma,
                {},
                "/library/book[title='Emma'][edition='1']:  -> none\n"
                "/library/book[title='Emma'][edition='1']/binding: paper -> none\n"
                "/library/book[title='Emma'][edition='1']/loan/reader: Ann -> none\n"},
        EditRow{"RemoveLeafList",
                operation_kind::remove,
                YFW_OPERATION_REMOVE,
                "/library:library/shelf",
                {},
                "/library/shelf[.='1']: 1 -> none\n/library/shelf[.='2']: 2 -> none\n"},
        EditRow{"BadValue", operation_kind::set, YFW_OPERATION_MERGE, emma + "/binding", "wood", "operation-failed"},
        EditRow{"Key", operation_kind::remove, YFW_OPERATION_REMOVE, emma + "/title", {}, "operation-failed"},
        EditRow{"OtherKey", operation_kind::set, YFW_OPERATION_MERGE, emma + "/title", "Persuasion",
                "operation-failed"},
        EditRow{"State", operation_kind::set, YFW_OPERATION_MERGE, "/library:library/visit/minutes", "9",
                "operation-not-supported"}),
    [](const auto &each) { return std::string(each.param.name); });

TEST(DeviceEdit, DropsTheOtherCasesOfAChoice) {
  yfw::memory_device device = device_of(shelved);
  for (const auto &[leaf, value, result] :
       {std::tuple{"gas-meter", "7", "/library/gas-meter: none -> 7\n"},
        std::tuple{"stove", "true",
                   "/library/stove: none -> true\n"
                   "/library/gas-meter: 7 -> none\n"},
        std::tuple{"coal", "3", "/library/coal: none -> 3\n/library/stove: true -> none\n"},
        std::tuple{"wood", "4", "/library/wood: none -> 4\n/library/coal: 3 -> none\n"}}) {
    const auto edit = edit_of(device);
    apply(*edit, call(operation_kind::set, std::string("/library:library/") + leaf, value, YFW_OPERATION_MERGE));
    EXPECT_EQ(result, words(*edit->effects()));
    edit->commit();
  }
  EXPECT_EQ(device.text().find("gas-meter"), std::string::npos);
}

TEST(DeviceEdit, RefusesAPathWithoutKeys) {
  yfw::memory_device device = device_of(shelved);
  const auto edit = edit_of(device);
  EXPECT_EQ("'/library/book/binding' lacks a key of 'book'", thrown_by([&] {
              apply(*edit, call(operation_kind::set, emma + "/binding", "cloth", YFW_OPERATION_MERGE, true));
            }));
}

TEST(DeviceEdit, LeavesAnEntryWithItsKeysAndNoEmptyContainer) {
  yfw::memory_device device = device_of(shelved);
  const auto edit = edit_of(device);
  apply(*edit, call(operation_kind::remove, emma + "/binding", {}, YFW_OPERATION_DELETE));
  apply(*edit, call(operation_kind::remove, emma + "/loan/reader", {}, YFW_OPERATION_DELETE));
  apply(*edit, call(operation_kind::set, emma + "/stamp/day", "7"));
  apply(*edit, call(operation_kind::remove, emma + "/stamp/day", {}, YFW_OPERATION_DELETE));
  edit->commit();
  const std::string text = device.text();
  EXPECT_NE(std::string::npos, text.find("<title>Emma</title>"));
  EXPECT_EQ(std::string::npos, text.find("<loan"));
  EXPECT_NE(std::string::npos, text.find("<stamp"));
}

TEST(DeviceEdit, TellsTheNetEffect) {
  yfw::memory_device device = device_of(shelved);
  const auto edit = edit_of(device);
  apply(*edit, call(operation_kind::remove, "/library:library/name", {}, YFW_OPERATION_DELETE));
  apply(*edit, call(operation_kind::set, "/library:library/name", "Annex"));
  apply(*edit, call(operation_kind::set, "/library:library/motto", "Read"));
  apply(*edit, call(operation_kind::remove, "/library:library/motto", {}, YFW_OPERATION_DELETE));
  EXPECT_EQ("/library/name: Main -> Annex\n", words(*edit->effects()));
}

// In long lists entries are found in another way when many are looked for.
TEST(DeviceEdit, DoesTheSameInOneEditAsInMany) {
  yfw::memory_device one = device_of(shelved);
  yfw::memory_device many = device_of(shelved);
  const auto whole = edit_of(one);
  std::mt19937 random(1);
  for (int i = 0; i < 2000; ++i) {
    const std::string book = "/library:library/book[title='" + std::to_string(random() % 50) + "'][edition='" +
                             std::to_string(random() % 2) + "']";
    const bool is_of_entry = random() % 8 == 0;
    const std::string path = book + (is_of_entry ? "" : random() % 2 == 0 ? "/binding" : "/loan/reader");
    const bool is_set = !is_of_entry && random() % 3 != 0;
    const yfw::native_operation next =
        is_set
            ? call(operation_kind::set, path, path.ends_with("binding") ? "cloth" : "Ann",
                   random() % 4 == 0 ? YFW_OPERATION_CREATE : YFW_OPERATION_MERGE)
            : call(operation_kind::remove, path, {}, random() % 2 == 0 ? YFW_OPERATION_DELETE : YFW_OPERATION_REMOVE);
    const auto single = edit_of(many);
    const std::string result = outcome_of(*single, next);
    EXPECT_EQ(result, outcome_of(*whole, next)) << next.path();
    if (result.empty()) {
      single->commit();
    }
  }
  whole->commit();
  EXPECT_EQ(many.text(), one.text());
  EXPECT_GT(std::ranges::count(one.text(), '\n'), 100);
}

// ---- random edits, compared with those of a model that copies all

struct model_node {
  std::string name, value;  // no value: a container or list entry
  std::vector<model_node> below;

  bool operator==(const model_node &) const = default;
};

// A step of a path: a name, with the keys of a book.
struct model_step {
  std::string name, title, edition;

  bool leads_to(const model_node &node) const {
    return node.name == name &&
           (title.empty() || (node.below.at(0).value == title && node.below.at(1).value == edition));
  }
};

// The leaves of a choice, with their cases, which exclude each other.
const std::map<std::string, std::string> heating = {
    {"gas-meter", "gas"}, {"gas-price", "gas"}, {"stove", "stove"}, {"coal", "coal"}, {"wood", "wood"}};

model_node &added_to(model_node &parent, model_node node) {
  if (heating.contains(node.name)) {
    std::erase_if(parent.below, [&](const model_node &other) {
      return heating.contains(other.name) && heating.at(other.name) != heating.at(node.name);
    });
  }
  const auto last = std::find_if(parent.below.rbegin(), parent.below.rend(),
                                 [&](const model_node &other) { return other.name == node.name; });
  return *parent.below.insert(last == parent.below.rend() ? parent.below.end() : last.base(), std::move(node));
}

// Whether it can be done: "create" finds nothing there, "delete" something.
bool apply_to(model_node &parent, std::span<const model_step> steps, const std::optional<std::string> &value,
              uint32_t operation) {
  const model_step &step = steps.front();
  const bool is_last = steps.size() == 1;
  if (value && is_last && step.name == "shelf") {
    const bool is_there = std::ranges::find(parent.below, model_node{step.name, *value, {}}) != parent.below.end();
    is_there ? void() : void(added_to(parent, {step.name, *value, {}}));
    return !is_there || operation != YFW_OPERATION_CREATE;
  }
  auto found = std::ranges::find_if(parent.below, [&](const model_node &node) { return step.leads_to(node); });
  if (value) {
    const bool is_there = found != parent.below.end();
    model_node fresh{step.name, "", {}};
    if (!step.title.empty()) {
      fresh.below = {{"title", step.title, {}}, {"edition", step.edition, {}}};
    }
    model_node &node = is_there ? *found : added_to(parent, std::move(fresh));
    if (!is_last) {
      return apply_to(node, steps.subspan(1), value, operation);
    }
    node.value = *value;
    return !is_there || operation != YFW_OPERATION_CREATE;
  }
  if (found == parent.below.end()) {
    return operation != YFW_OPERATION_DELETE;
  }
  if (is_last) {
    std::erase_if(parent.below, [&](const model_node &node) { return step.leads_to(node); });
    return true;
  }
  const bool is_done = apply_to(*found, steps.subspan(1), value, operation);
  if (found->below.empty() && found->name != "stamp") {
    parent.below.erase(found);
  }
  return is_done;
}

std::string picture_of(const model_node &node) {
  std::string text = node.name + (node.value.empty() ? "" : "=" + node.value);
  for (const model_node &below : node.below) {
    text += (&below == &node.below.front() ? "{" : " ") + picture_of(below);
  }
  return text + (node.below.empty() ? "" : "}");
}

// What effects are about, by their paths.
void add_items(const model_node &node, const std::string &above, std::map<std::string, std::string> &items) {
  std::string path = above + (node.name.empty() ? "" : "/" + node.name);
  if (node.name == "book") {
    path += "[title='" + node.below.at(0).value + "'][edition='" + node.below.at(1).value + "']";
  } else if (node.name == "shelf") {
    path += "[.='" + node.value + "']";
  }
  if (!node.value.empty() || node.name == "book" || node.name == "stamp") {
    items[path] = node.value;
  }
  for (const model_node &below : node.below) {
    below.name == "title" || below.name == "edition" ? void() : add_items(below, path, items);
  }
}

// Long values as a letter and its count, so that a failure can be read.
std::string shortened(const std::string &text) {
  std::string result;
  for (size_t i = 0; i < text.size();) {
    const size_t end = std::min(text.find_first_not_of(text[i], i), text.size());
    result += end - i < 4 ? text.substr(i, end - i) : text[i] + std::to_string(end - i);
    i = end;
  }
  return result;
}

std::set<std::string> difference(const model_node &before, const model_node &after) {
  std::map<std::string, std::string> was;
  std::map<std::string, std::string> is;
  add_items(before, "", was);
  add_items(after, "", is);
  std::set<std::string> lines;
  for (const auto &[path, value] : was) {
    const auto now = is.find(path);
    if (now == is.end() || now->second != value) {
      lines.insert(shortened(path + ": " + value + " -> " + (now == is.end() ? "none" : now->second)));
    }
  }
  for (const auto &[path, value] : is) {
    was.contains(path) ? void() : void(lines.insert(shortened(path + ": none -> " + value)));
  }
  return lines;
}

std::string picture_of(const yfw::native_device &device, const std::string &path) {
  const yfw::native_operation asked = call(operation_kind::read, path);
  return shortened(picture(device.read({&asked, 1}, yfw::datastore::running)));
}

class random_edit {
 public:
  explicit random_edit(std::mt19937 &random) : random_(random) {
    steps = {{"library", "", ""}};
    const size_t kind = random_() % 16;
    if (kind < 8) {
      const size_t title = random_() % 5;
      steps.push_back({"book", std::to_string(title), std::to_string(1 + random_() % 2)});
      static const std::vector<std::vector<model_step>> leaves = {
          {{"binding", "", ""}}, {{"loan", "", ""}, {"reader", "", ""}}, {{"stamp", "", ""}, {"day", "", ""}}};
      const auto &leaf = leaves[random_() % 3];
      steps.insert(steps.end(), leaf.begin(), leaf.end());
    } else if (kind < 11) {
      steps.push_back({"shelf", "", ""});
    } else if (kind < 14) {
      steps.push_back({std::next(heating.begin(), static_cast<int>(random_() % heating.size()))->first, "", ""});
    } else {
      steps.push_back({"motto", "", ""});
    }
    if (random_() % 3 != 0) {
      value = value_for(steps.back().name);
      operation = random_() % 8 == 0 ? YFW_OPERATION_CREATE : YFW_OPERATION_MERGE;
      return;
    }
    operation = random_() % 8 == 0 ? YFW_OPERATION_DELETE : YFW_OPERATION_REMOVE;
    while (steps.size() > 2 && random_() % 3 == 0) {
      steps.pop_back();
    }
    if (random_() % 40 == 0) {
      steps.resize(1);
    }
  }

  yfw::native_operation native() const {
    std::string path;
    for (const model_step &step : steps) {
      path += (path.empty() ? "/library:" : "/") + step.name;
      path += step.title.empty() ? "" : "[title='" + step.title + "'][edition='" + step.edition + "']";
    }
    yfw::native_operation made = call(value ? operation_kind::set : operation_kind::remove, path, value, operation);
    for (yfw::path_step &step : made.steps) {
      random_() % 2 == 0 ? std::ranges::reverse(step.keys) : step.keys.begin();
    }
    return made;
  }

  std::vector<model_step> steps;
  std::optional<std::string> value;
  uint32_t operation = YFW_OPERATION_MERGE;

 private:
  std::string value_for(const std::string &leaf) {
    if (leaf == "motto" || leaf == "reader") {
      return std::string(1 + random_() % 6000, static_cast<char>('a' + random_() % 26));
    }
    if (leaf == "binding") {
      return random_() % 2 == 0 ? "paper" : "cloth";
    }
    return leaf == "stove" ? "true" : std::to_string(1 + random_() % 6);
  }

  std::mt19937 &random_;
};

TEST(DeviceEdit, DoesWhatAModelThatCopiesAllDoes) {
  yfw::memory_device device(library());
  model_node model;
  std::mt19937 random(7);
  size_t failed = 0;
  for (int i = 0; i < 3000; ++i) {
    model_node after = model;
    bool is_done = true;
    auto edit = edit_of(device);
    for (size_t count = 1 + random() % 12; count > 0 && is_done; --count) {
      const random_edit next(random);
      is_done = apply_to(after, next.steps, next.value, next.operation);
      ASSERT_EQ(is_done, outcome_of(*edit, next.native()).empty()) << next.native().path();
    }
    failed += is_done ? 0 : 1;
    if (is_done) {
      std::set<std::string> effects;
      const std::vector<yfw::device_change> changes = *edit->effects();
      for (const yfw::device_change &change : changes) {
        effects.insert(
            shortened(change.path + ": " + change.before.value_or("none") + " -> " + change.after.value_or("none")));
      }
      ASSERT_EQ(difference(model, after), effects) << "transaction " << i;
    }
    if (is_done && random() % 2 == 0) {
      edit->commit();
      model = std::move(after);
    }
    edit.reset();
    const std::string expected = model.below.empty() ? "" : shortened("library:" + picture_of(model.below.front()));
    ASSERT_EQ(expected, picture_of(device, "/library:library")) << "transaction " << i;
    for (int book = 0; book < 10; ++book) {
      const model_step step{"book", std::to_string(book / 2), std::to_string(1 + book % 2)};
      std::string entry;
      for (const model_node &node : model.below.empty() ? std::vector<model_node>() : model.below.front().below) {
        entry = step.leads_to(node) ? shortened("library:library{" + picture_of(node) + "}") : entry;
      }
      ASSERT_EQ(entry, picture_of(device,
                                  "/library:library/book[title='" + step.title + "'][edition='" + step.edition + "']"));
    }
  }
  EXPECT_LT(300U, failed);
}

// The entries move up when the leaf before them goes.
TEST(DeviceEdit, FindsEntriesAfterACaseOfAChoiceIsGone) {
  const std::string heated = "<library xmlns=\"urn:test:library\"><gas-meter>7</gas-meter></library>";
  yfw::memory_device one = device_of(heated);
  yfw::memory_device many = device_of(heated);
  const auto whole = edit_of(one);
  const auto set = [&](const std::string &path, const std::string &value) {
    const auto single = edit_of(many);
    apply(*single, call(operation_kind::set, "/library:library/" + path, value));
    single->commit();
    apply(*whole, call(operation_kind::set, "/library:library/" + path, value));
  };
  for (const std::string reader : {"Ann", "Bo"}) {
    for (int i = 0; i < 40; ++i) {
      set("book[title='" + std::to_string(i) + "'][edition='1']/loan/reader", reader);
    }
    set("stove", "true");
  }
  whole->commit();
  EXPECT_EQ(many.text(), one.text());
}

// ---- what a device is read from and written as

struct TextRow {
  const char *name, *text, *written;
};

class DeviceText : public testing::TestWithParam<TextRow> {};

TEST_P(DeviceText, IsWrittenAsItWasRead) {
  EXPECT_EQ(GetParam().written, device_of(GetParam().text).text());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DeviceText,
    testing::Values(
        TextRow{"Reply",
                "<rpc-reply xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\" message-id=\"7\"><data/></rpc-reply>",
                "<rpc-reply xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\" message-id=\"7\">\n"
                "  <data>\n  </data>\n</rpc-reply>\n"},
        TextRow{"BareWithForeignIdentity",
                "<library xmlns=\"urn:test:library\" xmlns:s=\"urn:test:shop\"><book><title>A</title>"
                "<edition>1</edition><genre>s:crime</genre></book></library>",
                "<library xmlns=\"urn:test:library\">\n  <book>\n    <title>A</title>\n    <edition>1</edition>\n"
                "    <genre xmlns:shop=\"urn:test:shop\">shop:crime</genre>\n  </book>\n</library>\n"},
        TextRow{"UnknownXml", "<library xmlns=\"urn:test:library\"><pond>deep</pond><pond/></library>",
                "<library xmlns=\"urn:test:library\">\n  <pond>deep</pond>\n  <pond/>\n</library>\n"},
        TextRow{"StateThatRepeats", R"({"library:library":{"visit":[{"chapter":[7,8,7]}]}})",
                "{\n  \"library:library\": {\n    \"visit\": [\n      {\n        \"chapter\": [\n          7,\n"
                "          8,\n          7\n        ]\n      }\n    ]\n  }\n}\n"},
        TextRow{
            "Json", R"({"library:library":{"shelf":[1],"closed":[null],"book":[{"title":"A","edition":1}]}})",
            "{\n  \"library:library\": {\n    \"shelf\": [\n      1\n    ],\n    \"closed\": [null],\n"
            "    \"book\": [\n      {\n        \"title\": \"A\",\n        \"edition\": 1\n      }\n    ]\n  }\n}\n"}),
    [](const auto &each) { return std::string(each.param.name); });

class DeviceRefused : public testing::TestWithParam<TextRow> {};

TEST_P(DeviceRefused, SaysWhy) {
  EXPECT_EQ(GetParam().written, thrown_by([] { (void)device_of(GetParam().text).text(); }));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DeviceRefused,
    testing::Values(
        TextRow{"Twice", "<library xmlns=\"urn:test:library\"><name>A</name>\n<name>B</name></library>",
                "device:2: /library/name: 'name' appears twice"},
        TextRow{"EntryTwice", R"({"library:library":{"book":[{"title":"A","edition":1},{"title":"A","edition":1}]}})",
                "device:1: /library/book[title=\"A\"][edition=\"1\"]: 'book' appears twice"},
        TextRow{"WithoutKey", R"({"library:library":{"book":[{"title":"A"}]}})",
                "device:1: /library/book[title=\"A\"]: list entry without its key 'edition'"},
        TextRow{"Operation",
                "<library xmlns=\"urn:test:library\" xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\" "
                "nc:operation=\"merge\"/>",
                "device:1: /library: operations are not allowed in a device's data"},
        TextRow{"Message", "<get xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\"/>",
                "device:1: /get: 'get' is not native data; 'data' with native data is"},
        TextRow{"UnknownJson", R"({"library:library":{"pond":5}})",
                "device:1: /library/pond: is not defined in the modules and could not be written back unchanged"},
        TextRow{"UnknownPrefixedValue",
                "<library xmlns=\"urn:test:library\" xmlns:s=\"urn:test:shop\"><pond>s:deep</pond></library>",
                "device:1: /library/pond: 's:deep' could not be written back with its prefix"}),
    [](const auto &each) { return std::string(each.param.name); });

// ---- the file

class DeviceFile : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = testing::TempDir() + "ymap-device-XXXXXX";
    ASSERT_NE(nullptr, ::mkdtemp(name.data()));
    directory_ = name;
    file_ = directory_ / "device.xml";
    write(shelved);
  }
  void TearDown() override {
    fs::remove_all(directory_);
  }

  void write(const std::string &text) const {
    std::ofstream(file_) << text;
  }
  std::string text() const {
    std::ifstream in(file_);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  static void set(const fs::path &file, const std::string &path, const std::string &value) {
    yfw::file_device device(file, library());
    const auto edit = edit_of(device);
    apply(*edit, call(operation_kind::set, path, value));
    edit->commit();
  }

  fs::path directory_, file_;
};

TEST_F(DeviceFile, KeepsPermissionsAndLinks) {
  const fs::path link = directory_ / "link";
  fs::create_symlink("device.xml", link);
  ASSERT_EQ(0, ::chmod(file_.c_str(), 0640));
  set(link, "/library:library/name", "Annex");
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(fs::perms(0640), fs::status(file_).permissions());
  EXPECT_NE(std::string::npos, text().find("<name>Annex</name>"));
  EXPECT_TRUE(fs::exists(directory_ / "device.xml.lock")) << "one lock, whatever name the file goes by";
}

TEST_F(DeviceFile, StaysWhenItCannotBeParsed) {
  write("<data>torn");
  EXPECT_NE("", thrown_by([&] { set(file_, "/library:library/name", "Annex"); }));
  EXPECT_EQ("<data>torn", text());
}

TEST_F(DeviceFile, IsNotMadeWhenMissing) {
  fs::remove(file_);
  EXPECT_NE(std::string::npos, thrown_by([&] { set(file_, "/library:library/name", "Annex"); }).find("no such device"));
  EXPECT_FALSE(fs::exists(file_));
}

TEST_F(DeviceFile, StaysWhenItsNewTextCannotBeWritten) {
  if (::geteuid() == 0) {
    // Root may write anywhere; a file that stands in the way of nothing else is data that cannot be written back.
    write("<library xmlns=\"urn:test:library\" xmlns:s=\"urn:test:shop\"><pond>s:deep</pond></library>");
  } else {
    ASSERT_EQ(0, ::chmod(directory_.c_str(), 0500));
  }
  const std::string before = text();
  EXPECT_NE("", thrown_by([&] { set(file_, "/library:library/name", "Annex"); }));
  EXPECT_EQ(before, text());
  ASSERT_EQ(0, ::chmod(directory_.c_str(), 0700));
}

std::string value_of(const yfw::native_device &device, const std::string &path) {
  const yfw::native_operation asked = call(operation_kind::read, path);
  const yfw::document read = device.read({&asked, 1}, yfw::datastore::running);
  return read.roots().empty() ? "" : yfw::children(read.roots().front()).front().value;
}

std::string named(const std::string &name) {
  return "<library xmlns=\"urn:test:library\"><name>" + name + "</name></library>";
}

TEST_F(DeviceFile, IsReadAgainWhenAnotherProgramWroteIt) {
  const yfw::file_device device(file_, library());
  write(named("Main"));
  const auto time = fs::last_write_time(file_);
  EXPECT_EQ("Main", value_of(device, "/library:library/name"));
  std::this_thread::sleep_for(std::chrono::milliseconds(20));  // more than a file system's clock may stand still
  write(named("Dock"));
  fs::last_write_time(file_, time);
  EXPECT_EQ("Dock", value_of(device, "/library:library/name"));
}

// Between the two a reader loads what another program wrote, which the commit then replaces.
TEST_F(DeviceFile, ReadsWhatWasCommittedWhoeverReadBefore) {
  yfw::file_device device(file_, library());
  const auto edit = edit_of(device);
  write(named("Other"));
  EXPECT_EQ("Other", value_of(device, "/library:library/name"));
  apply(*edit, call(operation_kind::set, "/library:library/name", "Annex"));
  edit->commit();
  EXPECT_NE(std::string::npos, text().find("<name>Annex</name>"));
  EXPECT_EQ("Annex", value_of(device, "/library:library/name"));
}

TEST_F(DeviceFile, KeepsAFileThatNoEditChanged) {
  const std::string before = text();  // in one line, which a file that was written is not
  set(file_, "/library:library/name", "Main");
  EXPECT_EQ(before, text());
}

TEST_F(DeviceFile, LosesNoEditOfTwoWriters) {
  constexpr int edits = 50;
  pid_t writers[2] = {};
  for (const int writer : {0, 1}) {
    writers[writer] = ::fork();
    if (writers[writer] == 0) {
      const std::string title(1, static_cast<char>('A' + writer));
      const std::string failure = thrown_by([&] {
        for (int i = 0; i < edits; ++i) {
          set(file_, "/library:library/book[title='" + title + std::to_string(i) + "'][edition='1']/binding", "cloth");
        }
      });
      ::_exit(failure.empty() ? 0 : 1);
    }
  }
  for (const pid_t writer : writers) {
    int status = -1;
    ASSERT_EQ(writer, ::waitpid(writer, &status, 0));
    EXPECT_EQ(0, status);
  }
  const std::string all = text();
  for (int i = 0; i < edits; ++i) {
    EXPECT_NE(std::string::npos, all.find("<title>A" + std::to_string(i) + "</title>"));
    EXPECT_NE(std::string::npos, all.find("<title>B" + std::to_string(i) + "</title>"));
  }
}

// The writer counts up, so that the file tells an acknowledged edit from a lost one.
TEST_F(DeviceFile, IsWholeAndCurrentWheneverTheWriterIsKilled) {
  int acknowledged[2] = {};
  ASSERT_EQ(0, ::pipe(acknowledged));
  constexpr int mark = -1;  // the end, or a writer that fails
  int last = 0;
  for (int round = 0; round < 20; ++round) {
    const pid_t writer = ::fork();
    if (writer == 0) {
      (void)thrown_by([&] {
        for (int i = last + 1;; ++i) {
          set(file_, "/library:library/motto", std::to_string(i));
          (void)!::write(acknowledged[1], &i, sizeof i);
        }
      });
      (void)!::write(acknowledged[1], &mark, sizeof mark);
      ::_exit(1);
    }
    ASSERT_EQ(static_cast<ssize_t>(sizeof last), ::read(acknowledged[0], &last, sizeof last));
    ASSERT_NE(mark, last);
    std::this_thread::sleep_for(std::chrono::microseconds(700 * round));
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
    ASSERT_EQ(static_cast<ssize_t>(sizeof mark), ::write(acknowledged[1], &mark, sizeof mark));
    for (int next = last; next != mark;) {
      last = next;
      ASSERT_EQ(static_cast<ssize_t>(sizeof next), ::read(acknowledged[0], &next, sizeof next));
    }
    const yfw::native_operation asked = call(operation_kind::read, "/library:library/motto");
    std::string kept;
    EXPECT_EQ(
        "", thrown_by([&] {
          const yfw::document read = yfw::file_device(file_, library()).read({&asked, 1}, yfw::datastore::running);
          kept = yfw::children(read.roots().front()).front().value;
        }));
    EXPECT_TRUE(kept == std::to_string(last) || kept == std::to_string(last + 1)) << kept << " after " << last;
    last = std::stoi(kept);
  }
}

}  // namespace
