// Checks a manifest against the modules.
#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "yfw/error.hpp"
#include "yfw/internal/manifest_nodes.hpp"
#include "yfw/internal/path_steps.hpp"

namespace yfw {
namespace {

class manifest_check {
 public:
  manifest_check(const manifest &description, const schema &modules, const std::filesystem::path &file)
      : manifest_(description), modules_(modules), file_(file) {}

  void run() const {
    for (size_t i = 0; i < manifest_.entry_points.size(); ++i) {
      check_entry_point(manifest_.entry_points[i], member("entry-points", i));
    }
    for (size_t i = 0; i < manifest_.lists.size(); ++i) {
      const list_pair &pair = manifest_.lists[i];
      check_key(lists_at(pair.high, member("lists", i) + "/high"), pair.high_key, member("lists", i) + "/high-key");
      check_key(lists_at(pair.low, member("lists", i) + "/low"), pair.low_key, member("lists", i) + "/low-key");
    }
    for (size_t i = 0; i < manifest_.defaults.size(); ++i) {
      (void)lists_at(manifest_.defaults[i].at, member("defaults", i) + "/at");
    }
  }

 private:
  static std::string member(const char *array, size_t index) {
    return std::string("/") + array + "[" + std::to_string(index) + "]";
  }

  [[noreturn]] void fail(const std::string &where, const std::string &text) const {
    throw error(place{file_.string(), 0, where}, text);
  }

  void check_entry_point(const entry_point &entry, const std::string &where) const {
    const std::vector<std::string_view> known = modules_.modules();
    if (std::ranges::find(known, entry.module) == known.end()) {
      fail(where + "/module", "unknown module " + in_quotes(entry.module) + did_you_mean(known, entry.module));
    }
    const std::vector<const lysc_node *> above =
        entry.at == "/" ? std::vector<const lysc_node *>{nullptr} : modules_.find_all(entry.at);
    if (std::ranges::none_of(above, [&](const lysc_node *node) { return has_below(node, entry.module); })) {
      std::set<std::string> right;
      add_places(nullptr, entry.module, right);
      fail(where + "/at", "module " + in_quotes(entry.module) + " has no nodes below " + in_quotes(entry.at) +
                              (right.empty() ? " or anywhere else" : ", expected " + quoted_list(right)));
    }
  }

  bool has_below(const lysc_node *above, std::string_view module) const {
    return std::ranges::any_of(modules_.children(above),
                               [&](const lysc_node *below) { return module_name(below) == module; });
  }

  // The paths below which the nodes of a module stand.
  void add_places(const lysc_node *above, std::string_view module, std::set<std::string> &places) const {
    for (const lysc_node *below : modules_.children(above)) {
      if (module_name(below) == module) {
        places.insert(above == nullptr ? "/" : path(above));
      } else {
        add_places(below, module, places);
      }
    }
  }

  // The lists of that path, of which there is one at least.
  std::vector<const lysc_node *> lists_at(std::string_view at, const std::string &where) const {
    std::vector<const lysc_node *> found = modules_.find_all(at);
    if (found.empty()) {
      fail(where, in_quotes(at) + " is not in the modules" + first_fault(at));
    }
    if (const lysc_node *meant = manifest_node(manifest_, at, modules_); meant != nullptr) {
      found = {meant};
    }
    std::erase_if(found, [](const lysc_node *node) { return !is_list(node); });
    if (found.empty()) {
      fail(where, in_quotes(at) + " is not a list");
    }
    return found;
  }

  // What is wrong with a path that is not in the modules: its first unknown name.
  std::string first_fault(std::string_view at) const {
    if (!at.starts_with('/')) {
      return ": it does not begin with '/'";
    }
    std::vector<const lysc_node *> above{nullptr};
    std::string_view rest = at;
    for (;;) {
      const std::string_view step = next_step(rest);
      std::vector<const lysc_node *> found = modules_.find_all(at.substr(0, at.size() - rest.size()));
      if (found.empty()) {
        return ": " + modules_.unknown_name(above, step, in_quotes(step));
      }
      above = std::move(found);
    }
  }

  void check_key(const std::vector<const lysc_node *> &lists, std::string_view key, const std::string &where) const {
    std::vector<std::string_view> right;
    for (const lysc_node *list : lists) {
      std::ranges::copy(key_names(list), std::back_inserter(right));
    }
    if (std::ranges::find(right, key) == right.end()) {
      fail(where, in_quotes(key) + " is not a key of '" + path(lists.front()) + "'" +
                      (right.empty() ? ", which has none" : ", expected " + quoted_list(right)));
    }
  }

  // Where a list has no keys, any leaf of it may identify its entries.
  std::vector<std::string_view> key_names(const lysc_node *list) const {
    std::vector<std::string_view> names = keys(list);
    if (names.empty()) {
      for (const lysc_node *below : modules_.children(list)) {
        if (is_leaf(below)) {
          names.push_back(name(below));
        }
      }
    }
    return names;
  }

  const manifest &manifest_;
  const schema &modules_;
  const std::filesystem::path &file_;
};

}  // namespace

void check_manifest(const manifest &description, const schema &modules, const std::filesystem::path &file) {
  manifest_check(description, modules, file).run();
}

}  // namespace yfw
