// Every node of every model is known to its walker, is traced under its own name, and is compared in the model's order.
// The models stand in data/*.tree.
#include "mapping_test.hpp"
#include "trace_points.hpp"

#include "ymap_oc_ethernet_openconfig_if_ethernet.h"
#include "ymap_oc_ethernet_zemlo_quarn_drivers_media_eth_cfg.h"
#include "ymap_oc_ethernet_zemlo_quarn_drivers_media_eth_oper.h"
#include "ymap_oc_ethernet_zemlo_quarn_mdrv_lib_cfg.h"

#include <algorithm>
#include <sstream>

using namespace support;

namespace {

struct model_row {
  const char *name;
  const char *tree_file;
  const char *ns;
  const char *prefix;  // of the walk names
  ymap_node_function *entry;
  const char *entry_hook;   // walk name whose augment hook an augmentation's entry calls; null: the root's own walk
  uint32_t walk_operation;  // of a request that visits every node
  bool walks_by_expansion;  // of the empty root, twice, as leaves without counterpart end a plain walk
  const char *strong_hook;  // walk name of the container whose augment hook is written by hand, or ""
};

class Model : public mapping_test, public testing::WithParamInterface<model_row> {
 protected:
  // The comparisons of a node "unknown" with literals, then of the model's namespace, and the augment hooks called,
  // when that node is `input` or stands below it.
  std::string fate_of_unknown(const description &input);
  // Checks it below `path.back()` and the containers in it; all nodes from the root on are in `path`.
  void check_below(const std::vector<const description *> &path);

  const model_row &model_ = GetParam();
  std::list<std::string> texts_;
  description whole_ = read_tree(YMAP_TEST_DATA + std::string(model_.tree_file), model_.ns, &texts_);
};

// A name holds the root's tag, the parent's and the node's, without hyphens.
std::string walk_name(const std::vector<const description *> &path) {
  std::string name;
  for (size_t i = 0; i < path.size(); ++i) {
    if (i == 0 || i + 2 >= path.size()) {
      name += (i == 0 ? "" : "_") + std::string(path[i]->fields.tag);
    }
  }
  name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
  return name;
}

std::vector<const description *> longer(std::vector<const description *> path, const description &child) {
  path.push_back(&child);
  return path;
}

// Start and End of the last node of `path` and of each node below it.
std::string expected_steps(const std::vector<const description *> &path) {
  std::string steps = walk_name(path) + " Start\n";
  for (const description &child : path.back()->children) {
    steps += expected_steps(longer(path, child));
  }
  return steps + walk_name(path) + " End\n";
}

TEST_P(Model, EveryNodeIsVisitedUnderItsName) {
  request.operation = model_.walk_operation;
  ctx.ring_trace_enabled = 1;
  tree input(model_.walks_by_expansion ? node(whole_.fields.tag, model_.ns) : whole_);
  ASSERT_EQ(model_.entry(&ctx, input.root(), &out), 0U);
  std::string steps;
  for (const trace_point &point : parsed(framework.ring)) {
    if (point.name.rfind(model_.prefix, 0) == 0 && point.name.find("_parse_augments") == std::string::npos) {
      steps += point.name.substr(std::string(model_.prefix).size()) + " " + point.text + "\n";
    }
  }
  const std::string once = expected_steps({&whole_});
  EXPECT_EQ(steps, model_.walks_by_expansion ? once + once : once);
}

std::string Model::fate_of_unknown(const description &input) {
  framework.calls.clear();
  framework.ring.clear();
  tree built(input);
  (void)model_.entry(&ctx, built.root(), &out);
  std::string fate;
  std::istringstream calls(framework.calls);
  for (std::string line; std::getline(calls, line);) {
    if (line.rfind("match \"unknown\"", 0) == 0 || line.rfind("match \"" + std::string(model_.ns) + "\"", 0) == 0) {
      fate += line + "\n";
    }
  }
  for (const trace_point &point : parsed(framework.ring)) {
    if (point.name.find("_parse_augments") != std::string::npos && point.text == "Start") {
      fate += point.name + "\n";
    }
  }
  return fate;
}

void Model::check_below(const std::vector<const description *> &path) {
  std::string comparisons;
  for (const description &child : path.back()->children) {
    comparisons += "match \"unknown\" \"" + std::string(child.fields.tag) + "\"\n";
  }
  const std::string name = walk_name(path);
  const std::string hook = (name == model_.strong_hook ? "" : "__") + (model_.prefix + name) + "_parse_augments\n";
  for (const char *ns : {model_.ns, foreign}) {
    description chain = leaf("unknown", ns);
    for (auto each = path.rbegin(); each != path.rend(); ++each) {
      chain = node((*each)->fields.tag, model_.ns, {chain});
    }
    const std::string namespaces = "match \"" + std::string(model_.ns) + "\" \"" + ns + "\"\n";
    EXPECT_EQ(fate_of_unknown(chain), comparisons + namespaces + (ns == foreign ? hook : "")) << "below " << name;
  }
  for (const description &child : path.back()->children) {
    if (!child.children.empty()) {
      check_below(longer(path, child));
    }
  }
}

// Its tag is compared in the model's order, then the namespace; a foreign node goes to the hook of its own parent.
TEST_P(Model, UnknownNodesAreComparedWithAllAndHandedOn) {
  framework.notes_comparisons = true;
  ctx.ring_trace_enabled = 1;
  if (model_.entry_hook != nullptr) {
    const std::string top = "match \"unknown\" \"" + std::string(whole_.fields.tag) + "\"\n";
    const std::string namespaces = "match \"" + std::string(model_.ns) + "\" \"";
    EXPECT_EQ(fate_of_unknown(leaf("unknown", model_.ns)), top + namespaces + model_.ns + "\"\n");
    EXPECT_EQ(fate_of_unknown(node("unknown", foreign, {leaf("child", foreign)})),
              top + namespaces + foreign + "\"\n__" + model_.prefix + model_.entry_hook + "_parse_augments\n");
  }
  if (!whole_.children.empty()) {
    check_below({&whole_});
  }
}

const model_row models[] = {
    {"OpenConfig", "openconfig.tree", oc, "ymap_ox_oc_ethernet_openconfigifethernet_lvla_",
     ymap_ox_oc_ethernet_openconfigifethernet_augment_lvla_interface, "interface", 10, true, "ethernet_config"},
    {"NativeOperational", "native_oper.tree", oper, "ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_",
     ymap_xo_oc_ethernet_zemloquarndriversmediaethoper_lvla_ethernetinterface, nullptr, 10, false, ""},
    {"NativeConfiguration", "native_cfg.tree", cfg, "ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_lvla_",
     ymap_xo_oc_ethernet_zemloquarndriversmediaethcfg_augment_lvla_interface_configuration, "interface_configuration",
     1, false, ""},
    {"NativeAddress", "native_lib.tree", lib, "ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_lvla_",
     ymap_xo_oc_ethernet_zemloquarnmdrvlibcfg_augment_lvla_interface_configuration, "interface_configuration", 1, false,
     ""},
};

INSTANTIATE_TEST_SUITE_P(Models, Model, testing::ValuesIn(models),
                         [](const auto &row) { return std::string(row.param.name); });

}  // namespace
