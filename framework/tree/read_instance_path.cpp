// What a path of names and keys means in the modules.
#include <algorithm>
#include <iterator>

#include "yfw/error.hpp"
#include "yfw/instance_path.hpp"
#include "yfw/internal/path_steps.hpp"

namespace yfw {
namespace {

using schema_nodes = std::vector<const lysc_node *>;

bool has_prefix(const lysc_node *node, std::string_view prefix) {
  return prefix.empty() || prefix == module_name(node) || prefix == module_prefix(node);
}

// The nodes below the parents that a step may mean, of one module or of several.
schema_nodes children_named(const schema &modules, const schema_nodes &parents, const written_step &step) {
  schema_nodes found;
  for (const lysc_node *above : parents) {
    std::ranges::copy_if(modules.children(above), std::back_inserter(found), [&](const lysc_node *below) {
      return name(below) == step.name && has_prefix(below, step.prefix);
    });
  }
  if (found.empty()) {
    const bool is_one_path =
        std::ranges::all_of(parents, [&](auto *node) { return path(node) == path(parents.front()); });
    const std::string written = (step.prefix.empty() ? "" : std::string(step.prefix) + ":") + std::string(step.name);
    const std::string where = is_one_path ? path(parents.front()) + "/" + std::string(step.name) : "";
    throw client_error({"", 0, where}, modules.unknown_name(parents, step.name, in_quotes(written)),
                       error_tag::unknown_element, std::string(step.name));
  }
  return found;
}

class path_resolver {
 public:
  path_resolver(std::string_view text, const schema &modules, path_keys wanted)
      : text_(text), modules_(modules), wanted_(wanted), written_(read_steps(text)) {}

  std::vector<path_step> steps(const client_node_test &is_clients) const {
    std::vector<path_step> result;
    for (const lysc_node *node = target(is_clients); node != nullptr; node = parent(node)) {
      const written_step &step = written_[written_.size() - 1 - result.size()];
      result.push_back({node, entry_keys(node, step)});
    }
    std::ranges::reverse(result);
    return result;
  }

 private:
  const lysc_node *target(const client_node_test &is_clients) const {
    schema_nodes reached{nullptr};
    for (const written_step &step : written_) {
      reached = children_named(modules_, reached, step);
    }
    if (reached.size() > 1 && is_clients && std::ranges::any_of(reached, is_clients)) {
      std::erase_if(reached, [&](const lysc_node *node) { return !is_clients(node); });
    }
    if (reached.size() > 1) {
      throw client_error({},
                         in_quotes(text_) + " is ambiguous, expected " + in_quotes(qualified_path(reached[0])) +
                             " or " + in_quotes(qualified_path(reached[1])),
                         error_tag::invalid_value);
    }
    return reached.front();
  }

  std::vector<std::pair<std::string_view, std::string>> entry_keys(const lysc_node *node,
                                                                   const written_step &step) const {
    const std::vector<std::string_view> names = keys(node);
    std::vector<std::pair<std::string_view, std::string>> result;
    for (const auto &[written, value] : step.keys) {
      const size_t colon = written.find(':');
      const std::string_view prefix = colon == written.npos ? "" : written.substr(0, colon);
      const auto key = std::ranges::find(names, written.substr(colon + 1));
      if (key == names.end() || !has_prefix(node, prefix)) {
        throw client_error({"", 0, std::string(text_)},
                           in_quotes(written) + " is not a key of " + in_quotes(name(node)) +
                               did_you_mean(names, written.substr(colon + 1)),
                           error_tag::unknown_element, std::string(written));
      }
      result.emplace_back(*key, value);
    }
    for (const std::string_view key : names) {
      const auto given = std::ranges::count(result, key, &std::pair<std::string_view, std::string>::first);
      if (given != 1 && !(result.empty() && wanted_ == path_keys::optional)) {
        throw client_error(
            {"", 0, std::string(text_)},
            "key " + in_quotes(key) + " of " + in_quotes(name(node)) +
                (given == 0 ? " is missing, expected [" + std::string(key) + "='…']" : " is given twice"),
            error_tag::missing_element, std::string(key));
      }
    }
    return result;
  }

  std::string_view text_;
  const schema &modules_;
  const path_keys wanted_;
  const std::vector<written_step> written_;
};

}  // namespace

std::vector<path_step> read_instance_path(std::string_view path, const schema &modules,
                                          const client_node_test &is_clients, path_keys wanted) {
  return path_resolver(path, modules, wanted).steps(is_clients);
}

}  // namespace yfw
