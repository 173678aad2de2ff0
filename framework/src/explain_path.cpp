// Paths as a user types them, made complete.
#include <algorithm>

#include "coverage_values.hpp"
#include "explain_parts.hpp"
#include "yfw/engine.hpp"

namespace yfw {
namespace {

struct written_step {
  std::string_view name;  // with its prefix, if any
  std::string_view keys;  // "[a='b'][c='d']", or nothing
};

// The length of the predicates that `text` begins with.
size_t predicates_length(std::string_view text) {
  size_t at = 0;
  char quote = 0;
  for (; at < text.size(); ++at) {
    const char c = text[at];
    if (quote != 0) {
      quote = c == quote ? '\0' : quote;
    } else if (c == '\'' || c == '"') {
      quote = c;
    } else if (c == '/') {
      break;
    }
  }
  return at;
}

std::vector<written_step> written_steps(std::string_view path) {
  std::vector<written_step> steps;
  while (!path.empty()) {
    path.remove_prefix(1);  // the slash
    written_step &step = steps.emplace_back();
    step.name = path.substr(0, path.find_first_of("/["));
    path.remove_prefix(step.name.size());
    step.keys = path.substr(0, predicates_length(path));
    path.remove_prefix(step.keys.size());
  }
  return steps;
}

std::string shown(const lysc_node *node) {
  return node == nullptr ? "the top" : yfw::quoted(path(node));
}

const lysc_node *child_named(const schema &modules, const lysc_node *above, std::string_view written) {
  const size_t colon = written.find(':');
  const std::string_view plain = colon == written.npos ? written : written.substr(colon + 1);
  std::vector<std::string_view> names;
  for (const lysc_node *below : modules.children(above)) {
    const bool is_module = colon == written.npos || module_name(below) == written.substr(0, colon);
    if (is_module && name(below) == plain) {
      return below;
    }
    names.push_back(name(below));
  }
  std::string text = quoted(written) + (above == nullptr ? " is not a top-level node of the modules"
                                                         : " is not a child of " + shown(above));
  if (const std::string_view near = closest(names, plain); !near.empty()) {
    text += near == plain ? "; there it is of another module" : "; did you mean " + quoted(near) + "?";
  }
  throw error(text);
}

// Predicates with sample values, also in a form for messages.
std::string made_up_predicates(const schema &modules, const lysc_node *list, std::vector<std::string> &made_up) {
  std::string text;
  for (const std::string_view key : keys(list)) {
    const std::vector<std::string> samples = sample_values(modules, modules.child(list, ns(list), key));
    if (samples.empty()) {
      throw error("no value of key " + quoted(key) + " of " + shown(list) + " is known to make up; give one");
    }
    made_up.push_back(std::string(key) + "=" + key_literal(samples.front()));
    text += "[" + made_up.back() + "]";
  }
  return text;
}

}  // namespace

full_path complete_path(std::string_view path, const schema &modules) {
  if (!path.starts_with('/') || path.ends_with('/')) {
    throw error(quoted(path) + " is not a path, of a slash and a name for each node");
  }
  full_path result;
  const lysc_node *node = nullptr;
  for (const written_step &step : written_steps(path)) {
    node = child_named(modules, node, step.name);
    result.text.append("/").append(step.name).append(step.keys);
    if (step.keys.empty() && is_list(node)) {
      result.text += made_up_predicates(modules, node, result.made_up_keys);
    }
  }
  result.steps = read_instance_path(result.text, modules);
  return result;
}

std::string path_text(const std::vector<path_step> &steps) {
  return native_call{call_kind::read, steps, {}, 0, nullptr}.path();
}

}  // namespace yfw
