// Each framework call of a walk that can fail fails once, with several statuses. What the walk then does is foretold
// from the walk without a failure: it ends with that status after closing what is open, but for the exceptions in one
// table.
#include "mapping_test.hpp"

#include "eth_manual_mappings.h"
#include "ymap_oc_ethernet_openconfig_if_ethernet.h"
#include "ymap_oc_ethernet_zemlo_quarn_drivers_media_eth_cfg.h"
#include "ymap_oc_ethernet_zemlo_quarn_drivers_media_eth_oper.h"
#include "ymap_oc_ethernet_zemlo_quarn_mdrv_lib_cfg.h"

#include <algorithm>
#include <functional>
#include <sstream>

using namespace support;

namespace {

using lines = std::vector<std::string>;

constexpr uint32_t arbitrary_statuses[] = {1, YMAP_NOT_MAPPED, 0x20000000, 0xaaf21234, YMAP_ERR_NO_MATCH, 0xffffffff};

struct walk {
  const char *name;
  std::function<uint32_t(yfw_ctx_t *, yfw_node_t *, yfw_node_t *)> call;
  uint32_t operation;
  description input;
  size_t fallible_calls;
  uint32_t item_status = 0;
};

// ---- one walk and what came of it

struct node_state {
  std::string change;
  bool is_reached;  // its tag was recognised
};

struct outcome {
  uint32_t status = 0;
  lines calls;
  std::vector<fallible_call> fallible;
  std::vector<node_state> nodes;  // a node before those below it
  std::string out_change, unsettled;
  bool has_error_tag = false;
};

lines split(const std::string &text) {
  lines result;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    result.push_back(line);
  }
  return result;
}

// Copies of a node and all below it.
std::vector<yfw_node_t> flattened(const yfw_node_t &node) {
  std::vector<yfw_node_t> all{node};
  for (uint32_t i = 0; i < ymap_child_count(&node); ++i) {
    const std::vector<yfw_node_t> below = flattened(node.children[i]);
    all.insert(all.end(), below.begin(), below.end());
  }
  return all;
}

// What a walk must leave even, or must have put back; "" when it has.
std::string unsettled(const mapping_context &at) {
  std::string text = at.framework.hierarchy.empty() ? "" : "hierarchy ";
  text += at.record.output_list_count == 0 ? "" : "output list ";
  text += at.record.walker_flags == 0 ? "" : "walker flags ";
  text += at.record.expansion_in_progress == 0 ? "" : "expansion in progress ";
  text += at.record.leaf_marking_suppressed == 0 ? "" : "leaf marking ";
  const uint32_t pending = at.record.expansion_flags & 0x7;
  text += pending == 0 || pending == 0x2 || pending == 0x6 ? "" : "expansion flags ";
  const bool owns_copies = at.framework.copies.size() == (at.record.error_tag != nullptr ? 1U : 0U);
  return text + (owns_copies ? "" : "lost copies ");
}

// Carries out the walk; call `failing_call`, from 1, fails.
outcome carried_out(const walk &walk, size_t failing_call = 0, uint32_t failing_status = 0) {
  mapping_context at;
  yfw_node_t key = leaf("name", oc_if, "Eth7").fields;
  yfw_itree_entry_t entry{&key};
  at.framework.stack_entry = &entry;
  at.framework.item_status = walk.item_status;
  at.framework.failing_call = failing_call;
  at.framework.failing_status = failing_status;
  at.request.operation = walk.operation;
  tree input(walk.input);
  const std::vector<yfw_node_t> before = flattened(*input.root());
  const yfw_node_t out_before = at.out;

  outcome result;
  result.status = walk.call(&at.ctx, input.root(), &at.out);
  result.calls = split(at.framework.calls);
  result.fallible = at.framework.fallible;
  result.out_change = node_change(out_before, at.out);
  result.has_error_tag = at.record.error_tag != nullptr;
  result.unsettled = unsettled(at);
  const std::vector<yfw_node_t> after = flattened(*input.root());
  EXPECT_EQ(before.size(), after.size()) << "a node's children were not given back";
  for (size_t i = 0; i < before.size() && i < after.size(); ++i) {
    const bool is_reached = i == 0 || at.framework.matched.count(after[i].tag) != 0;
    result.nodes.push_back({node_change(before[i], after[i]), is_reached});
  }
  return result;
}

// ---- what a failure must come to

struct failure {
  const walk &of;
  const outcome &whole;  // of the walk without a failure
  fallible_call call;
  const fallible_call *next_call;  // null after the last
  uint32_t status;

  const std::string &line() const {
    return whole.calls[call.line - 1];
  }
  std::string next_line() const {
    return call.line < whole.calls.size() ? whole.calls[call.line] : "";
  }
  bool reads() const {
    return of.operation == YFW_REQUEST_READ_CONFIG || of.operation == YFW_REQUEST_READ_ALL;
  }
};

// What is called and returned.
struct course {
  lines calls;
  uint32_t status;
};

bool begins(const std::string &text, const std::string &with) {
  return text.rfind(with, 0) == 0;
}

std::string without_value(std::string line) {
  const size_t from = line.find(" \"");
  return from == std::string::npos ? line : line.erase(from, line.find('"', from + 2) + 1 - from);
}

// A node that is open: its tag, as lines name it.
struct open_node {
  std::string tag;
  bool is_entry;
  bool is_registered = false;
};

std::vector<open_node> open_after(const lines &calls, size_t count) {
  std::vector<open_node> open;
  for (size_t i = 0; i < count; ++i) {
    if (begins(calls[i], "push ")) {
      open.push_back({calls[i].substr(5, calls[i].size() - 7), calls[i].back() == '2'});
    } else if (begins(calls[i], "register ")) {
      open.back().is_registered = true;
    } else if (begins(calls[i], "pop ")) {
      open.pop_back();
    }
  }
  return open;
}

// An entry is registered before it is closed, whatever happened at its beginning.
void close(const open_node &node, lines *to) {
  if (node.is_entry && !node.is_registered) {
    to->push_back("register " + node.tag);
  }
  to->push_back("pop " + node.tag);
  if (node.is_entry) {
    to->push_back("unregister " + node.tag);
  }
}

lines calls_until(const failure &at) {
  return {at.whole.calls.begin(), at.whole.calls.begin() + static_cast<std::ptrdiff_t>(at.call.line)};
}

course walk_ends(const failure &at, lines calls) {
  std::vector<open_node> open = open_after(calls, calls.size());
  for (; !open.empty(); open.pop_back()) {
    close(open.back(), &calls);
  }
  return {calls, at.status};
}

course walk_goes_on(const failure &at) {
  return {at.whole.calls, at.whole.status};
}

// The innermost open entry, or -1.
std::ptrdiff_t open_entry(const std::vector<open_node> &open) {
  std::ptrdiff_t i = std::ssize(open) - 1;
  while (i >= 0 && !open[static_cast<size_t>(i)].is_entry) {
    --i;
  }
  return i;
}

bool forgives_entry(const failure &at) {
  return at.status == YMAP_ERR_NO_MATCH && open_entry(open_after(at.whole.calls, at.call.line)) >= 0;
}

// The entry is closed, and the walk goes on behind it. One that has no counterpart is not registered at all.
course entry_is_left(const failure &at) {
  lines calls = calls_until(at);
  std::vector<open_node> open = open_after(calls, calls.size());
  const auto entry = static_cast<size_t>(open_entry(open));
  while (open.size() > entry + 1) {
    close(open.back(), &calls);
    open.pop_back();
  }
  if (at.call.kind == failing::list || at.call.kind == failing::key) {
    calls.push_back("pop " + open.back().tag);
  } else {
    close(open.back(), &calls);
  }
  size_t behind = at.call.line;
  while (open_after(at.whole.calls, behind).size() > entry) {
    ++behind;
  }
  behind += begins(at.whole.calls[behind], "unregister ") ? 1 : 0;
  calls.insert(calls.end(), at.whole.calls.begin() + static_cast<std::ptrdiff_t>(behind), at.whole.calls.end());
  return {calls, at.whole.status};
}

// Whether the call reports a config leaf whose state leaf is reported next.
bool is_beside_state(const failure &at) {
  std::string line = at.line();
  const size_t place = line.find("/config/");
  if (!begins(line, "add oc:") || place == std::string::npos) {
    return false;
  }
  line.replace(place, std::string("/config/").size(), "/state/");
  return at.next_line() == line;
}

// By hand: both leaves are reported, and the first failure counts.
bool is_reported_by_hand(const failure &at) {
  return is_beside_state(at) &&
         (at.line().find("flow-control") != std::string::npos || at.line().find("auto-negotiate") != std::string::npos);
}

course state_is_reported_too(const failure &at) {
  lines calls = calls_until(at);
  calls.push_back(at.next_line());
  return walk_ends(at, calls);
}

course name_is_missing(const failure &at) {
  course result = walk_goes_on(at);
  std::string &add = result.calls[at.call.line];
  add = add.find("/interface-name") != std::string::npos ? without_value(add) : add;
  return result;
}

course defaults_are_reported(const failure &at) {
  lines calls = calls_until(at);
  calls.emplace_back("add oc:/interfaces/interface/ethernet/config/auto-negotiate \"false\" flag 1");
  if (at.of.operation == YFW_REQUEST_READ_ALL) {
    calls.emplace_back("add oc:/interfaces/interface/ethernet/state/auto-negotiate \"false\" flag 1");
  }
  return {calls, YMAP_OK};
}

// The comparison that would have found the value is the last before the path is added.
bool is_value_found(const failure &at) {
  return at.call.kind == failing::comparison && at.next_call != nullptr && at.next_call->kind == failing::add;
}

// The value of the first leaf whose tag holds `word`.
std::string value_of(const description &in, const std::string &word) {
  if (in.fields.value != nullptr && std::string(in.fields.tag).find(word) != std::string::npos) {
    return in.fields.value;
  }
  std::string found;
  for (size_t i = 0; i < in.children.size() && found.empty(); ++i) {
    found = value_of(in.children[i], word);
  }
  return found;
}

course value_is_unknown(const failure &at) {
  course result = walk_goes_on(at);
  std::string &add = result.calls[at.call.line];
  const std::string leaf = add.find("duplex") != std::string::npos ? "duplex" : "speed";
  const std::string error = "ERR Invalid " + leaf + " leaf value '" + value_of(at.of.input, leaf) + "' specified in " +
                            (begins(add, "add oc:") ? "low" : "high") + " model";
  add = without_value(add);
  result.calls.insert(result.calls.begin() + static_cast<std::ptrdiff_t>(at.call.line), error);
  return result;
}

bool is_before_expansion(const failure &at) {
  return !at.call.is_expanding && at.next_call != nullptr && at.next_call->is_expanding;
}

struct exception {
  const char *reason;
  bool (*holds)(const failure &);
  course (*leads_to)(const failure &);
};

// The first that holds.
const exception exceptions[] = {
    {"a value whose comparison fails is an unknown one, which is reported", is_value_found, value_is_unknown},
    {"a comparison that fails is no match", [](const failure &at) { return at.call.kind == failing::comparison; },
     walk_goes_on},
    {"a copy that cannot be made leaves the request without its error tag",
     [](const failure &at) { return at.call.kind == failing::copy; }, walk_goes_on},
    {"an item that is not found is absent, which is reported as the default",
     [](const failure &at) { return at.call.kind == failing::item; }, defaults_are_reported},
    {"a read without the interface's name asks for the leaf of all interfaces",
     [](const failure &at) {
       return at.reads() && (at.call.kind == failing::stack || begins(at.line(), "key /interfaces/"));
     },
     name_is_missing},
    {"an expanded container is mapped as far as possible", [](const failure &at) { return at.call.is_expanding; },
     walk_goes_on},
    {"the auto-negotiation item need not be there to be deleted",
     [](const failure &at) { return at.line().find(" and tell") != std::string::npos; }, walk_goes_on},
    {"flow control and the defaults report config and state, and return the first failure", is_reported_by_hand,
     state_is_reported_too},
    {"other leaves report config and state, and return the status of the last", is_beside_state, walk_goes_on},
    {"the OpenConfig state address asks twice for the native one, and returns the last status",
     [](const failure &at) { return begins(at.line(), "add lib:") && at.next_line() == at.line(); }, walk_goes_on},
    {"a container that stands for all of its leaves is expanded, whatever failed in it before", is_before_expansion,
     [](const failure &at) {
       return course{at.whole.calls, at.status};
     }},
    {"a native entry without counterpart is left, the next is walked", forgives_entry, entry_is_left},
};

const exception *exception_for(const failure &at) {
  const auto *found =
      std::find_if(std::begin(exceptions), std::end(exceptions), [&](const exception &each) { return each.holds(at); });
  return found != std::end(exceptions) ? found : nullptr;
}

course foretold(const failure &at) {
  const exception *found = exception_for(at);
  return found != nullptr ? found->leads_to(at) : walk_ends(at, calls_until(at));
}

// ---- the walks

description ethernet(std::vector<description> children) {
  return node("ethernet", oc, std::move(children));
}

description config(std::vector<description> leaves) {
  return ethernet({node("config", oc, std::move(leaves))});
}

using values = std::vector<std::pair<std::string, const char *>>;

description with_values(description in, const values &of) {
  for (const auto &[tag, value] : of) {
    in.fields.value = tag == in.fields.tag ? value : in.fields.value;
  }
  for (description &child : in.children) {
    child = with_values(std::move(child), of);
  }
  return in;
}

description without(description in, const std::string &tag) {
  std::erase_if(in.children, [&](const description &child) { return tag == child.fields.tag; });
  for (description &child : in.children) {
    child = without(std::move(child), tag);
  }
  return in;
}

// A model's tree; each of its nodes has a tag at an address of its own.
description whole_tree(const char *file, const char *ns) {
  static std::list<std::string> texts;
  return read_tree(YMAP_TEST_DATA + std::string(file), ns, &texts);
}

// Of the counters, two have no native counterpart, which would end a walk.
description whole_openconfig() {
  return without(without(whole_tree("openconfig.tree", oc), "in-mac-control-frames"), "out-mac-control-frames");
}

description all_config_leaves(const char *boolean) {
  return with_values(without(whole_openconfig(), "state"), {{"mac-address", "a"},
                                                            {"auto-negotiate", boolean},
                                                            {"duplex-mode", "HALF"},
                                                            {"port-speed", "SPEED_1GB"},
                                                            {"enable-flow-control", boolean}});
}

description all_deleted() {
  description whole = without(whole_openconfig(), "state");
  for (description &leaf : whole.children[0].children) {
    leaf = leaf.operation(YFW_OPERATION_DELETE);
  }
  return whole;
}

description whole_oper() {
  return with_values(whole_tree("native_oper.tree", oper), {{"interface-name", "Eth0"}, {"speed", "ten-gbps"}});
}

description whole_cfg() {
  return with_values(
      whole_tree("native_cfg.tree", cfg),
      {{"duplex", "full"}, {"auto-negotiation", "override"}, {"flow-control", "bidirectional"}, {"speed", "1000"}});
}

description statistics_of_three() {
  std::vector<description> entries;
  for (const char *name : {"Eth0", "Eth1", "Eth2"}) {
    entries.push_back(node("statistic", oper,
                           {leaf("interface-name", oper, name), leaf("received8021q-frames", oper, "1"),
                            leaf("received-pause-frames", oper, "2")}));
  }
  return node("ethernet-interface", oper, {node("statistics", oper, std::move(entries))});
}

uint32_t get_defaults(yfw_ctx_t *ctx, yfw_node_t * /*node*/, yfw_node_t *out) {
  return ymap_xo_oc_ethernet_get_interface_defaults(nullptr, ctx, nullptr, out);
}

uint32_t create_defaults(yfw_ctx_t *ctx, yfw_node_t *node, yfw_node_t *out) {
  return ymap_ox_oc_ethernet_interface_create_defaults(nullptr, ctx, node, out);
}

constexpr auto *ox = &ymap_ox_oc_ethernet_openconfigifethernet_augment_lvla_interface;
constexpr auto *xo_oper = &ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface;
constexpr auto *xo_cfg = &ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_augment_lvla_interface_configuration;
constexpr auto *xo_lib = &ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_augment_lvla_interface_configuration;
constexpr auto *hw_mac = &ymap_ox_oc_ethernet_openconfigifethernet_leaf_lvla_ethernet_state_hwmacaddress;

const walk walks[] = {
    {"ReadsEveryNode", ox, 10, whole_openconfig(), 23},
    {"ReadsEveryConfigNode", ox, 0, without(whole_openconfig(), "state"), 5},
    {"ExpandsEthernet", ox, 10, ethernet({}), 48},
    {"ExpandsConfig", ox, 0, config({}), 6},
    {"ExpandsState", ox, 10, ethernet({node("state", oc)}), 18},
    {"ExpandsCounters", ox, 10, ethernet({node("state", oc, {node("counters", oc)})}), 10},
    {"ReadsAFlaggedLeaf", ox, 0, config({leaf("port-speed", oc).flag(YFW_NODE_READ_FLAG)}), 7},
    {"ReadsAnAggregateLeaf", ox, 10, config({leaf("aggregate-id", aggregate), leaf("port-speed", oc)}), 2},
    {"SetsEveryLeaf", ox, 1, all_config_leaves("true"), 10},
    {"SetsSwitchesOff", ox, 1, all_config_leaves("false"), 10},
    {"SetsAnAggregateLeaf", ox, 1, config({leaf("mac-address", oc, "a"), leaf("aggregate-id", aggregate, "1")}), 2},
    {"SetsAnUnknownLeaf", ox, 1, config({leaf("mac-address", oc, "a"), leaf("bogus", oc, "1")}), 2},
    {"SetsAForeignNode", ox, 1, ethernet({node("poe", foreign)}), 1},
    {"DeletesEveryLeaf", ox, 1, all_deleted(), 5},
    {"DeletesConfig", ox, 1, ethernet({node("config", oc).operation(YFW_OPERATION_DELETE)}), 5},
    {"DeletesEthernet", ox, 1, ethernet({}).operation(YFW_OPERATION_DELETE), 10},
    {"RemovesEthernet", ox, 1, ethernet({}).operation(YFW_OPERATION_REMOVE), 10},
    {"ReplacesConfig", ox, 1,
     ethernet({node("config", oc, {leaf("mac-address", oc, "a"), leaf("port-speed", oc, "SPEED_10MB")})
                   .operation(YFW_OPERATION_REPLACE)}),
     8},
    {"ReplacesEthernet", ox, 1, all_config_leaves("true").operation(YFW_OPERATION_REPLACE), 15},
    {"ReplacesInARead", ox, 0, config({leaf("mac-address", oc)}).operation(YFW_OPERATION_REPLACE), 7},
    {"LooksUpTheNameInAWrite", hw_mac, 1, leaf("hw-mac-address", oc), 1},
    {"CreatesDefaults", create_defaults, 1, node("interface", oc_if), 1},
    {"RepliesEveryOperNode", xo_oper, 10, whole_oper(), 24},
    {"RepliesThreeStatistics", xo_oper, 10, statistics_of_three(), 15},
    {"RepliesEveryCfgNode", xo_cfg, 10, whole_cfg(), 14},
    {"RepliesCfgOfConfigOnly", xo_cfg, 0, whole_cfg(), 7},
    {"RepliesEveryLibNode", xo_lib, 10, with_values(whole_tree("native_lib.tree", lib), {{"mac-addr", "a"}}), 2},
    {"ReportsNoDefault", get_defaults, 10, node("interface-configuration", cfg), 1},
    {"ReportsDefaults", get_defaults, 10, node("interface-configuration", cfg), 3, 1},
    {"ReportsDefaultsOfConfigOnly", get_defaults, 0, node("interface-configuration", cfg), 2, 1},
};

void PrintTo(const walk &of, std::ostream *out) {
  *out << of.name;
}

class Fault : public testing::TestWithParam<walk> {};

// What a fault leaves in the request: what was reached is as ever, what was not is untouched.
void expect_same_nodes(const outcome &whole, const outcome &is) {
  for (size_t i = 0; i < whole.nodes.size() && i < is.nodes.size(); ++i) {
    EXPECT_EQ(is.nodes[i].is_reached ? whole.nodes[i].change : "", is.nodes[i].change);
  }
}

bool mentions(const lines &calls, const std::string &text) {
  return std::any_of(calls.begin(), calls.end(),
                     [&](const std::string &line) { return line.find(text) != std::string::npos; });
}

void expect_foretold(const failure &at, const outcome &is) {
  const course should = foretold(at);
  EXPECT_EQ(should.calls, is.calls);
  EXPECT_EQ(status_name(should.status), status_name(is.status));
  EXPECT_EQ("", is.unsettled);
  EXPECT_EQ(mentions(is.calls, "strdup") && at.call.kind != failing::copy, is.has_error_tag);
  // A deleted auto-negotiate is created as the native item.
  const bool is_created = mentions(is.calls, "\"override\" from") && !at.whole.out_change.empty();
  EXPECT_EQ(is_created ? "~output operation=2 flags=10\n" : "", is.out_change);
  expect_same_nodes(at.whole, is);
}

// Each call that can fail with each status.
void for_each_failure(const walk &tried, const outcome &whole,
                      const std::function<void(const failure &, size_t)> &act) {
  for (size_t i = 0; i < whole.fallible.size(); ++i) {
    const fallible_call *next = i + 1 < whole.fallible.size() ? &whole.fallible[i + 1] : nullptr;
    for (const uint32_t status : arbitrary_statuses) {
      act({tried, whole, whole.fallible[i], next, status}, i + 1);
    }
  }
}

TEST_P(Fault, OfEachCallDoesWhatIsForetold) {
  const outcome whole = carried_out(GetParam());
  EXPECT_EQ("", whole.unsettled);
  EXPECT_EQ(GetParam().fallible_calls, whole.fallible.size());
  for_each_failure(GetParam(), whole, [](const failure &at, size_t number) {
    SCOPED_TRACE("call " + std::to_string(number) + " answers " + status_name(at.status));
    expect_foretold(at, carried_out(at.of, number, at.status));
  });
}

INSTANTIATE_TEST_SUITE_P(Walks, Fault, testing::ValuesIn(walks),
                         [](const auto &row) { return std::string(row.param.name); });

// Otherwise a walk above would leave some walkers alone.
TEST(FaultWalks, ReachEveryNodeOfEveryModel) {
  for (const walk &each : walks) {
    if (std::string(each.name).find("Every") != std::string::npos) {
      for (const node_state &node : carried_out(each).nodes) {
        EXPECT_TRUE(node.is_reached) << each.name;
      }
    }
  }
}

// A row of the table that no failure meets would say nothing.
TEST(FaultWalks, MeetEveryException) {
  std::set<const exception *> met;
  for (const walk &tried : walks) {
    for_each_failure(tried, carried_out(tried), [&](const failure &at, size_t) { met.insert(exception_for(at)); });
  }
  for (const exception &each : exceptions) {
    EXPECT_TRUE(met.count(&each) != 0) << each.reason;
  }
}

}  // namespace
