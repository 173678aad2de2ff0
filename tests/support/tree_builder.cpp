#include "tree_builder.hpp"

#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace support {

namespace {

// The node with every field cleared that a walker may change.
yfw_node_t unchanging_part(yfw_node_t node) {
  node.operation = 0;
  node.mapping_mark = 0;
  node.mark_flags = 0;
  node.flags = 0;
  return node;
}

}  // namespace

std::string short_name(const char *ns) {
  const std::pair<const char *, const char *> names[] = {{oc, "oc"},     {oc_if, "oc_if"}, {aggregate, "aggregate"},
                                                         {oper, "oper"}, {cfg, "cfg"},     {lib, "lib"}};
  for (const auto &[full, name] : names) {
    if (std::strcmp(ns, full) == 0) {
      return name;
    }
  }
  return ns;
}

description description::operation(uint32_t value) const {
  description result = *this;
  result.fields.operation = value;
  return result;
}

description description::flag(uint8_t bits) const {
  description result = *this;
  result.fields.flags |= bits;
  return result;
}

description description::without_array() const {
  description result = *this;
  result.fields.flags |= YFW_NODE_HAS_CHILDREN;
  result.fields.child_count = 1;
  result.children.clear();
  return result;
}

description description::without_flag() const {
  description result = *this;
  result.fields.flags &= static_cast<uint8_t>(~YFW_NODE_HAS_CHILDREN);
  return result;
}

description node(const char *tag, const char *ns, std::vector<description> children) {
  description result;
  result.fields.tag = tag;
  result.fields.ns = ns;
  result.children = std::move(children);
  result.fields.flags = result.children.empty() ? 0 : YFW_NODE_HAS_CHILDREN;
  return result;
}

description leaf(const char *tag, const char *ns, const char *value) {
  description result = node(tag, ns);
  result.fields.value = value;
  return result;
}

tree::tree(const description &root) {
  build({root}, &arrays_.emplace_back());
  before_ = arrays_;
}

void tree::build(const std::vector<description> &from, std::vector<yfw_node_t> *to) {
  for (const description &each : from) {
    to->push_back(each.fields);
    std::memset(to->back().framework_104, 0xa5, sizeof to->back().framework_104);
    if (!each.children.empty()) {
      std::vector<yfw_node_t> *children = &arrays_.emplace_back();
      build(each.children, children);
      to->back().children = children->data();
      to->back().child_count = static_cast<uint32_t>(children->size());
    }
  }
  to->shrink_to_fit();
}

std::string tree::changes() const {
  std::string lines;
  auto before = before_.begin();
  for (const std::vector<yfw_node_t> &array : arrays_) {
    for (size_t i = 0; i < array.size(); ++i) {
      lines += node_change((*before)[i], array[i]);
    }
    ++before;
  }
  return lines;
}

std::string node_change(const yfw_node_t &before, const yfw_node_t &after) {
  std::ostringstream line;
  if (after.operation != before.operation) {
    line << " operation=" << after.operation;
  }
  if (after.flags != before.flags) {
    line << " flags=" << std::hex << int{after.flags} << std::dec;
  }
  if (after.mapping_mark != before.mapping_mark || after.mark_flags != before.mark_flags) {
    line << " mark=" << after.mapping_mark << (after.mark_flags == YFW_MARK_WRITTEN ? "" : " with other mark flags");
  }
  const yfw_node_t kept = unchanging_part(before);
  const yfw_node_t is = unchanging_part(after);
  if (std::memcmp(&kept, &is, sizeof kept) != 0) {
    line << " and bytes that are not the plug-in's";
  }
  if (line.str().empty()) {
    return "";
  }
  return "~" + std::string(after.tag != nullptr ? after.tag : "(null)") + line.str() + "\n";
}

description read_tree(const std::string &path, const char *ns, std::list<std::string> *texts) {
  std::ifstream file(path);
  std::vector<description> open;  // from the root to the node read last
  const auto close_to = [&open](size_t depth) {
    while (open.size() > depth && open.size() > 1) {
      description done = std::move(open.back());
      open.pop_back();
      open.back().children.push_back(std::move(done));
      open.back().fields.flags = YFW_NODE_HAS_CHILDREN;
    }
  };
  for (std::string line; std::getline(file, line);) {
    const size_t indent = line.find_first_not_of(' ');
    close_to(indent / 2);
    open.push_back(node(texts->emplace_back(line.substr(indent, line.find(" []") - indent)).c_str(), ns));
  }
  close_to(1);
  if (open.empty()) {
    throw std::runtime_error("cannot read " + path);
  }
  return open.front();
}

}  // namespace support
