// Paths as a user types them, made complete.
#include <algorithm>
#include <iterator>

#include "yfw/internal/coverage_values.hpp"
#include "yfw/internal/explain_internal.hpp"
#include "yfw/internal/xpath_tokens.hpp"
#include "yfw/query.hpp"

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
  return node == nullptr ? "the top" : in_quotes(path(node));
}

using schema_nodes = std::vector<const lysc_node *>;

[[noreturn]] void refuse_name(const schema &modules, const lysc_node *above, std::string_view written) {
  const std::string_view plain = written.substr(written.find(':') + 1);
  std::vector<std::string_view> names;
  std::ranges::transform(modules.children(above), std::back_inserter(names), &yfw::name);
  std::string text = in_quotes(written) + (above == nullptr ? " is not a top-level node of the modules"
                                                            : " is not a child of " + shown(above));
  if (const std::string_view near = closest(names, plain); !near.empty()) {
    text += near == plain ? "; there it is of another module" : "; did you mean " + in_quotes(near) + "?";
  }
  throw error(text);
}

// Nodes of several modules may have the name.
schema_nodes children_named(const schema &modules, const schema_nodes &parents, std::string_view written) {
  const size_t colon = written.find(':');
  const std::string_view plain = written.substr(colon + 1);
  schema_nodes found;
  for (const lysc_node *above : parents) {
    std::ranges::copy_if(modules.children(above), std::back_inserter(found), [&](const lysc_node *below) {
      const bool is_module = colon == written.npos || module_name(below) == written.substr(0, colon);
      return is_module && name(below) == plain;
    });
  }
  if (found.empty()) {
    refuse_name(modules, parents.front(), written);
  }
  return found;
}

// The node that the steps lead to; of several one that is served.
const lysc_node *node_named(const schema &modules, const manifest &description, const std::vector<written_step> &steps,
                            std::string_view path) {
  schema_nodes reached{nullptr};
  for (const written_step &step : steps) {
    reached = children_named(modules, reached, step.name);
  }
  const auto is_served = [&](const lysc_node *node) { return serves_model_of(description, node, modules); };
  if (reached.size() > 1 && std::ranges::any_of(reached, is_served)) {
    std::erase_if(reached, [&](const lysc_node *node) { return !is_served(node); });
  }
  if (reached.size() > 1) {
    throw error(in_quotes(path) + " may mean " + in_quotes(qualified_path(reached[0])) + " or " +
                in_quotes(qualified_path(reached[1])) + ": say which");
  }
  return reached.front();
}

// Predicates with sample values, also in a form for messages.
std::string made_up_predicates(const schema &modules, const lysc_node *list, std::vector<std::string> &made_up) {
  std::string text;
  for (const std::string_view key : keys(list)) {
    const std::vector<std::string> samples = sample_values(modules, modules.child(list, ns(list), key));
    if (samples.empty()) {
      throw error("no value of key " + in_quotes(key) + " of " + shown(list) + " is known to make up; give one");
    }
    const std::string predicate = "[" + std::string(key) + "=" + key_literal(samples.front()) + "]";
    made_up.push_back(std::string(name(list)) + predicate);
    text += predicate;
  }
  return text;
}

// The path of the node, each name with its module, with the keys that are written or made up.
full_path complete_steps(const lysc_node *node, const schema &modules, const std::vector<written_step> &written) {
  schema_nodes chain;
  for (; node != nullptr; node = parent(node)) {
    chain.insert(chain.begin(), node);
  }
  full_path result;
  for (size_t i = 0; i < chain.size(); ++i) {
    const std::string_view given = i < written.size() ? written[i].keys : "";
    result.text.append("/").append(module_name(chain[i])).append(":").append(name(chain[i])).append(given);
    if (given.empty() && is_list(chain[i])) {
      result.text += made_up_predicates(modules, chain[i], result.made_up_keys);
    }
  }
  result.steps = read_instance_path(result.text, modules);
  return result;
}

}  // namespace

full_path complete_path(std::string_view path, const schema &modules, const manifest &description) {
  if (!path.starts_with('/') || path.ends_with('/')) {
    throw error(in_quotes(path) + " is not a path, of a slash and a name for each node");
  }
  (void)xpath_tokens(path);  // throws for what is no path before anything is added to it
  const std::vector<written_step> written = written_steps(path);
  return complete_steps(node_named(modules, description, written, path), modules, written);
}

full_path complete_path(const lysc_node *node, const schema &modules) {
  return complete_steps(node, modules, {});
}

}  // namespace yfw
