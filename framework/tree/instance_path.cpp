#include "yfw/instance_path.hpp"

#include <algorithm>

#include "yfw/node.hpp"

namespace yfw {

std::vector<std::pair<std::string_view, std::string_view>> step_keys(const path_step &step) {
  return {step.keys.begin(), step.keys.end()};
}

std::string path_text(const std::vector<path_step> &steps) {
  std::string text;
  for (const path_step &step : steps) {
    text.append("/").append(name(step.node));
    for (const auto &[key, value] : step.keys) {
      text.append("[").append(key).append("=").append(key_literal(value)).append("]");
    }
  }
  return text;
}

std::string key_literal(const std::string &text) {
  const char quote = text.find('\'') == std::string::npos ? '\'' : '"';
  return quote + text + quote;
}

std::vector<path_step> steps_to(const yfw_node_t &node) {
  const yfw_node_t *above = extra(node).parent;
  std::vector<path_step> steps = above == nullptr || is_envelope(*above) ? std::vector<path_step>() : steps_to(*above);
  path_step &step = steps.emplace_back(path_step{extra(node).schema, {}});
  for (const std::string_view key : keys(step.node)) {
    if (const yfw_node_t *leaf = child(node, key); leaf != nullptr && leaf->value != nullptr) {
      step.keys.emplace_back(key, leaf->value);
    }
  }
  return steps;
}

std::string path_literal(std::string_view text) {
  const char mark = text.find('"') == std::string_view::npos ? '"' : '\'';
  return mark + std::string(text) + mark;
}

std::string step_text(const yfw_node_t &node, std::span<const yfw_node_t> children) {
  std::string step = std::string("/") + (node.tag != nullptr ? node.tag : "?");
  for (const std::string_view key : keys(extra(node).schema)) {
    const auto found = std::ranges::find_if(children, [&](const yfw_node_t &each) {
      return each.tag != nullptr && key == each.tag && each.value != nullptr && is_key(extra(each).schema);
    });
    if (found != children.end()) {
      step += '[' + std::string(key) + '=' + path_literal(found->value) + ']';
    }
  }
  return step;
}

std::string path(const yfw_node_t &node) {
  std::vector<const yfw_node_t *> steps;
  for (const yfw_node_t *each = &node; each != nullptr; each = extra(*each).parent) {
    steps.push_back(each);
  }
  std::string text;
  for (auto each = steps.rbegin(); each != steps.rend(); ++each) {
    if (is_envelope(node) || !is_envelope(**each)) {
      text += step_text(**each, children(**each));
    }
  }
  return text;
}

}  // namespace yfw
