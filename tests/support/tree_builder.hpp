// Trees of nodes for tests: described by nested values, built as the arrays that cross the plug-in boundary.
#pragma once

#include "yfw.h"

#include <list>
#include <string>
#include <vector>

namespace support {

inline constexpr const char *oc = "http://openconfig.net/yang/interfaces/ethernet";
inline constexpr const char *oc_if = "http://openconfig.net/yang/interfaces";
inline constexpr const char *aggregate = "http://openconfig.net/yang/interfaces/aggregate";
inline constexpr const char *oper = "urn:zemlo:yang:Zemlo-QUARN-drivers-media-eth-oper";
inline constexpr const char *cfg = "urn:zemlo:yang:Zemlo-QUARN-drivers-media-eth-cfg";
inline constexpr const char *lib = "urn:zemlo:yang:Zemlo-QUARN-mdrv-lib-cfg";
inline constexpr const char *foreign = "urn:example:foreign";

// The constant's name above for a namespace, or the namespace itself.
std::string short_name(const char *ns);

// What a node is built from. Texts must outlive the tree.
struct description {
  yfw_node_t fields{};
  std::vector<description> children;

  description operation(uint32_t value) const;  // with that node operation
  description flag(uint8_t bits) const;         // with these flag bits set, too
  description without_array() const;            // children are counted and flagged, but there is no array
  description without_flag() const;             // children are counted, but not flagged
};

description node(const char *tag, const char *ns, std::vector<description> children = {});
description leaf(const char *tag, const char *ns, const char *value = nullptr);

// A described tree. Each array of children is an allocation of its own, so that sanitizers see a step over its end.
class tree {
 public:
  explicit tree(const description &root);
  tree(const tree &) = delete;
  tree &operator=(const tree &) = delete;

  yfw_node_t *root() {
    return &arrays_.front().front();
  }

  // A line for each node that is not as it was built, such as "~config operation=0 flags=50 mark=3", parents first.
  std::string changes() const;

 private:
  void build(const std::vector<description> &from, std::vector<yfw_node_t> *to);

  std::list<std::vector<yfw_node_t>> arrays_;  // the root's first; then in the order in which they were described
  std::list<std::vector<yfw_node_t>> before_;
};

// The difference of two states of a node as a line, or "".
std::string node_change(const yfw_node_t &before, const yfw_node_t &after);

// A tree from a file of indented tags, two blanks a level; all nodes are in namespace `ns`. A list entry's tag is
// followed by " []", which is dropped. `texts` owns the tags.
description read_tree(const std::string &path, const char *ns, std::list<std::string> *texts);

}  // namespace support
