#include <algorithm>
#include <map>
#include <sstream>

#include "deviations_internal.hpp"
#include "yfw/error.hpp"
#include "yfw/internal/schema_types.hpp"

namespace yfw {
namespace {

// In double quotes (RFC 7950, section 6.1.3).
std::string yang_string(const std::string &text) {
  std::string quoted = "\"";
  for (const char c : text) {
    quoted += c == '"' || c == '\\' ? std::string{'\\', c} : std::string{c};
  }
  return quoted + "\"";
}

std::string newest_revision(const std::vector<const lys_module *> &modules) {
  std::string newest;
  for (const lys_module *module : modules) {
    newest = std::max(newest, std::string(module->revision != nullptr ? module->revision : ""));
  }
  return newest;
}

class module_writer {
 public:
  module_writer(const deviations &plan, const coverage &measured, const deviation_module_names &names)
      : plan_(plan), names_(names) {
    for (const deviation &each : plan.statements) {
      add_prefixes(each.target);
    }
    revision_ = names.revision.empty() ? newest_revision(modules_) : names.revision;
    for (const coverage_row &row : measured.client) {
      revision_ = revision_.empty() ? newest_revision({row.leaf->module}) : revision_;
    }
  }

  std::string text() {
    out_ << "module " << names_.name << " {\n  yang-version 1.1;\n  namespace " << yang_string(names_.ns)
         << ";\n  prefix " << own_prefix << ";\n\n";
    for (const lys_module *module : modules_) {
      out_ << "  import " << module->name << " {\n    prefix " << prefixes_[module] << ";\n  }\n";
    }
    out_ << (modules_.empty() ? "" : "\n") << "  description\n    " << yang_string(description()) << ";\n\n";
    if (!revision_.empty()) {
      out_ << "  revision " << revision_ << " {\n    description\n      \"As measured with these modules.\";\n  }\n";
    }
    for (const deviation &each : plan_.statements) {
      add(each);
    }
    out_ << "}\n";
    return out_.str();
  }

 private:
  static constexpr const char *own_prefix = "dev";

  void add_prefixes(const lysc_node *target) {
    for (const lysc_node *node = target; node != nullptr; node = node->parent) {
      if (prefixes_.contains(node->module)) {
        continue;
      }
      std::string prefix = node->module->prefix;
      const auto is_taken = [&](const std::string &text) {
        return text == own_prefix ||
               std::any_of(prefixes_.begin(), prefixes_.end(), [&](const auto &each) { return each.second == text; });
      };
      for (int number = 2; is_taken(prefix); ++number) {
        prefix = node->module->prefix + std::to_string(number);
      }
      prefixes_[node->module] = prefix;
      modules_.push_back(node->module);
      std::sort(modules_.begin(), modules_.end(),
                [](const auto *a, const auto *b) { return std::string_view(a->name) < b->name; });
    }
  }

  std::string description() const {
    std::string text = "The parts of the deviated modules that are not supported.";
    if (!plan_.remarks.empty()) {
      text += "\n     Limits that no deviation can express:";
    }
    for (const std::string &remark : plan_.remarks) {
      text += "\n     - " + remark;
    }
    return text;
  }

  std::string identifier(const lysc_node *node) {
    return node == nullptr ? "" : identifier(node->parent) + "/" + prefixes_[node->module] + ":" + node->name;
  }

  void add(const deviation &each) {
    out_ << "\n  deviation " << yang_string(identifier(each.target)) << " {\n";
    switch (each.kind) {
      case deviate_kind::not_supported:
        out_ << "    deviate not-supported;\n";
        break;
      case deviate_kind::read_only:
        // An inherited config statement is added, not replaced.
        out_ << "    deviate " << ((each.target->flags & LYS_SET_CONFIG) != 0 ? "replace" : "add")
             << " {\n      config false;\n    }\n";
        break;
      case deviate_kind::values:
        add_values(each);
        break;
    }
    out_ << "  }\n";
  }

  void add_values(const deviation &each) {
    out_ << "    deviate replace {\n      type enumeration {\n";
    for (const auto *item : array_items(as<lysc_type_enum>(type_of(each.target)).enums)) {
      if (std::find(each.values.begin(), each.values.end(), item->name) != each.values.end()) {
        out_ << "        enum " << yang_string(item->name) << " {\n          value " << item->value << ";\n        }\n";
      }
    }
    out_ << "      }\n    }\n";
  }

  const deviations &plan_;
  const deviation_module_names &names_;
  std::map<const lys_module *, std::string> prefixes_;
  std::vector<const lys_module *> modules_;
  std::string revision_;
  std::ostringstream out_;
};

}  // namespace

std::string deviation_module(const deviations &plan, const coverage &measured, const schema &modules,
                             const deviation_module_names &names) {
  std::string text = module_writer(plan, measured, names).text();
  (void)load_with(modules, text, names.name);
  return text;
}

}  // namespace yfw
