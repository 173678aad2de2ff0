// Every function that the plug-in exports, on trees and requests as a framework may hand over: children that are
// counted without an array or fewer than there are, no tag, value or namespace, any operation and flag. The framework
// is the recording one of the tests, told by the input what its calls return.
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <list>
#include <string>
#include <vector>

#include "eth_manual_mappings.h"
#include "recording_framework.hpp"
#include "support/bytes.hpp"
#include "support/target.hpp"
#include "tree_builder.hpp"
#include "ymap_generated.h"

namespace {

using fuzz::bytes;

struct exported_function {
  std::string name;
  void *address;
};

// Those of the plug-in that this program is linked with, by the committed list of their names.
std::vector<exported_function> find_functions() {
  std::ifstream list(YMAP_FUZZ_EXPORTS);
  std::vector<exported_function> functions;
  for (std::string kind, name; list >> kind >> name;) {
    void *address = dlsym(RTLD_DEFAULT, name.c_str());
    if (address == nullptr) {
      (void)std::fprintf(stderr, "%s is not exported\n", name.c_str());
      std::abort();
    }
    functions.push_back({name, address});
  }
  return functions;
}

// The names of the models' nodes.
std::vector<std::string> find_words() {
  std::vector<std::string> words;
  for (const char *file : {"openconfig", "native_cfg", "native_lib", "native_oper"}) {
    std::ifstream tree(std::string(YMAP_FUZZ_TREES) + file + ".tree");
    for (std::string word; tree >> word;) {
      if (word != "[]") {
        words.push_back(word);
      }
    }
  }
  if (words.empty()) {
    std::abort();
  }
  return words;
}

constexpr const char *namespaces[] = {support::oc,  support::oc_if, support::aggregate, support::oper,
                                      support::cfg, support::lib,   support::foreign,   nullptr};
constexpr const char *values[] = {"true", "false",    "FULL",    "half", "SPEED_10MB",
                                  "100",  "ten-gbps", "ingress", "",     nullptr};

class tree_maker {
 public:
  tree_maker(bytes &input, const std::vector<std::string> &words) : input_(input), words_(words) {}

  support::description node(unsigned depth) {
    support::description made = support::leaf(tag(), input_.one_of(namespaces), value());
    const uint8_t shape = input_.number();
    for (unsigned left = depth == 0 ? 0 : shape & 0x07U; left != 0 && !input_.is_empty(); --left) {
      made.children.push_back(node(depth - 1));
    }
    made.fields.flags = input_.number();
    if (!made.children.empty()) {
      made.fields.flags |= (shape & 0x80U) != 0 ? 0 : YFW_NODE_HAS_CHILDREN;
    } else if ((shape & 0x40U) != 0) {
      made = made.without_array();
    }
    made.fields.operation = (shape & 0x20U) != 0 ? input_.number32() : input_.number() % 5;
    return made;
  }

 private:
  const char *tag() {
    const uint16_t which = input_.number16();
    return which == 0xffff ? nullptr : which >= 0xff00 ? text() : words_[which % words_.size()].c_str();
  }

  const char *value() {
    return input_.number() % 4 == 0 ? text() : input_.one_of(values);
  }

  const char *text() {
    return texts_.emplace_back(input_.text()).c_str();
  }

  bytes &input_;
  const std::vector<std::string> &words_;
  std::list<std::string> texts_;
};

// Lets some arrays hold more than is counted.
void count_fewer(yfw_node_t &node, bytes &input) {
  const bool has_children = (node.flags & YFW_NODE_HAS_CHILDREN) != 0 && node.children != nullptr;
  for (uint32_t i = 0; has_children && i < node.child_count; ++i) {
    count_fewer(node.children[i], input);
  }
  if (node.children != nullptr && input.number() % 8 == 1) {
    node.child_count = input.number() % node.child_count;
  }
}

// A request record of any content; its pointers are good or null. Selections are given by some of their bytes.
yfw_request_record_t record_of(bytes &input, yfw_request_t &request, yfw_node_t &list) {
  yfw_request_record_t record{};
  record.walker_flags = input.number();
  record.output_list_count = input.number();
  record.expansion_in_progress = input.number() % 3;
  record.expansion_flags = input.number();
  record.leaf_marking_suppressed = input.number() % 2;
  record.selection_mode = input.number() % 4;
  for (uint8_t *selection : {&record.selection_1172, &record.selection_1248, &record.selection_1273,
                             &record.selection_1292, &record.selection_1625}) {
    *selection = input.number();
  }
  record.request = &request;
  record.current_list = input.flag() ? &list : nullptr;
  return record;
}

void set_answers(support::recording_framework &framework, bytes &input) {
  framework.logs_errors = input.flag();
  framework.logs_traces = input.flag();
  framework.creates_node = input.flag();
  framework.interface_name = input.flag() ? "Eth0" : "";
  if (input.flag()) {
    framework.add_status[input.number()] = input.number32();
    framework.key_status = input.flag() ? input.number32() : 0;
    framework.item_status = input.number() % 2;
    framework.stack_status = input.flag() ? input.number32() : 0;
    framework.failing_comparison = input.number();
    framework.list_status["Eth0"] = input.flag() ? input.number32() : 0;
    framework.aggregate_status = {input.number32()};
  }
}

struct call {
  yfw_ctx_t *ctx;
  yfw_node_t *node;
  yfw_node_t *out;
};

template <typename function_t>
function_t *as(void *address) {
  return reinterpret_cast<function_t *>(address);
}

void run(const exported_function &function, const call &with, bytes &input) {
  const std::string &name = function.name;
  if (name == "ymap_xo_oc_ethernet_get_interface_defaults") {
    ymap_xo_oc_ethernet_get_interface_defaults(nullptr, with.ctx, nullptr, with.out);
  } else if (name == "ymap_ox_oc_ethernet_interface_create_defaults") {
    ymap_ox_oc_ethernet_interface_create_defaults(nullptr, with.ctx, with.node, with.out);
  } else if (name == "eth_oc_config_leaf_wanted") {
    (void)eth_oc_config_leaf_wanted(with.ctx->request);
  } else if (name.starts_with("eth_")) {
    (void)as<const char *(yfw_ctx_t *, yfw_node_t *)>(function.address)(with.ctx, with.node);
  } else if (name.find("_cont_lvla_") != std::string::npos || name.ends_with("duck_map_container")) {
    as<ymap_container_function>(function.address)(with.ctx, with.node, input.number(), with.out);
  } else {
    as<ymap_node_function>(function.address)(with.ctx, with.node, with.out);
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const std::vector<exported_function> functions = find_functions();
  static const std::vector<std::string> words = find_words();
  bytes input(data, size);
  const exported_function &function = functions[input.number16() % functions.size()];
  constexpr uint32_t operations[] = {YFW_REQUEST_READ_CONFIG, YFW_REQUEST_WRITE, YFW_REQUEST_READ_ALL, 0xffffffff};
  yfw_request_t request{input.one_of(operations)};
  yfw_node_t out{};
  yfw_node_t list{};
  yfw_request_record_t record = record_of(input, request, list);
  yfw_ctx_t ctx{};
  ctx.request = &record;
  ctx.ring_trace_enabled = input.flag() ? 1 : 0;
  support::recording_framework framework(&ctx, &out);
  set_answers(framework, input);
  tree_maker maker(input, words);
  support::tree tree(maker.node(6));
  count_fewer(*tree.root(), input);
  yfw_itree_entry_t entry{input.flag() ? tree.root() : nullptr};
  framework.stack_entry = input.flag() ? &entry : nullptr;
  run(function, {&ctx, tree.root(), &out}, input);
  if (!framework.hierarchy.empty()) {
    (void)std::fprintf(stderr, "%s leaves nodes open\n%s", function.name.c_str(), framework.calls.c_str());
    std::abort();
  }
  return 0;
}
