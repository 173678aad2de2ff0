#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>

#include "deviations_internal.hpp"
#include "yfw/error.hpp"
#include "yfw/internal/path_steps.hpp"
#include "yfw/internal/schema_types.hpp"
#include "yfw/internal/text.hpp"

namespace yfw {
namespace {

// libyang's import callback: prints the module of another context.
LY_ERR print_module(const char *name, const char * /*revision*/, const char *submodule, const char * /*of_submodule*/,
                    void *source, LYS_INFORMAT *format, const char **text, ly_module_imp_data_free_clb *release) {
  const auto *from = static_cast<const ly_ctx *>(source);
  char *printed = nullptr;
  ly_out *out = nullptr;
  LY_ERR status = LY_ENOTFOUND;
  if (const lys_module *module = ly_ctx_get_module_latest(from, name); submodule == nullptr && module != nullptr) {
    status = lys_print_mem(&printed, module, LYS_OUT_YANG, 0);
  } else if (const lysp_submodule *part = ly_ctx_get_submodule_latest(from, submodule);
             submodule != nullptr && part != nullptr && ly_out_new_memory(&printed, 0, &out) == LY_SUCCESS) {
    status = lys_print_submodule(out, part, LYS_OUT_YANG, 0, 0);
    ly_out_free(out, nullptr, 0);
  }
  *format = LYS_IN_YANG;
  *text = printed;
  *release = [](void *data, void * /*source*/) { std::free(data); };
  return status;
}

[[noreturn]] void throw_last_error(const ly_ctx *context, const std::string &file) {
  const ly_err_item *cause = ly_err_first(context);
  throw error(place{file, 0, {}}, "invalid together with the modules: " +
                                      plain_words(cause != nullptr && cause->msg != nullptr ? cause->msg : "unknown"));
}

// The node that a schema node identifier names in the modules in force.
const lysc_node *node_of(const ly_ctx *context, const lysp_module *from, std::string_view identifier) {
  const lysc_node *node = nullptr;
  while (!identifier.empty()) {
    const std::string_view step = next_step(identifier);
    const size_t colon = step.find(':');
    const lys_module *module = nullptr;
    for (const lysp_import *import : array_items(static_cast<const lysp_import *>(from->imports))) {
      if (colon != step.npos && step.substr(0, colon) == import->prefix) {
        module = ly_ctx_get_module_implemented(context, import->module->name);
      }
    }
    if (module == nullptr || module->compiled == nullptr) {
      return nullptr;
    }
    const std::string_view name = step.substr(colon + 1);
    const lysc_node *below = node == nullptr ? module->compiled->data : lysc_node_child(node);
    while (below != nullptr && (below->module != module || name != below->name)) {
      below = below->next;
    }
    node = below;
    if (node == nullptr) {
      return nullptr;
    }
  }
  return node;
}

class deviation_reader {
 public:
  deviation_reader(const lys_module *module, const ly_ctx *in_force, std::string file)
      : module_(module), in_force_(in_force), file_(std::move(file)) {}

  deviations read() {
    for (const lysp_deviation *each : array_items(static_cast<const lysp_deviation *>(module_->parsed->deviations))) {
      const lysc_node *target = node_of(in_force_, module_->parsed, each->nodeid);
      if (target == nullptr) {
        fail(each->nodeid, "no such node in the modules");
      }
      for (const lysp_deviate *deviate = each->deviates; deviate != nullptr; deviate = deviate->next) {
        result_.statements.push_back(statement(each->nodeid, target, deviate));
      }
    }
    read_remarks();
    return std::move(result_);
  }

 private:
  [[noreturn]] void fail(const char *identifier, const std::string &text) const {
    throw error(place{file_, 0, identifier}, text);
  }

  deviation statement(const char *identifier, const lysc_node *target, const lysp_deviate *deviate) const {
    if (deviate->mod == LYS_DEV_NOT_SUPPORTED) {
      return {deviate_kind::not_supported, target, {}};
    }
    if (deviate->mod == LYS_DEV_ADD && only_config_false(as<lysp_deviate_add>(deviate))) {
      return {deviate_kind::read_only, target, {}};
    }
    if (deviate->mod == LYS_DEV_REPLACE) {
      const auto &replace = as<lysp_deviate_rpl>(deviate);
      if ((replace.flags & LYS_CONFIG_R) != 0 && replace.type == nullptr) {
        return {deviate_kind::read_only, target, {}};
      }
      if (replace.type != nullptr && std::strcmp(replace.type->name, "enumeration") == 0) {
        deviation found{deviate_kind::values, target, {}};
        for (const auto *item : array_items(static_cast<const lysp_type_enum *>(replace.type->enums))) {
          found.values.emplace_back(item->name);
        }
        return found;
      }
    }
    fail(identifier, "unsupported deviate, expected 'not-supported', 'config false' or a smaller 'type enumeration'");
  }

  static bool only_config_false(const lysp_deviate_add &added) {
    return (added.flags & LYS_CONFIG_R) != 0 && added.units == nullptr && added.musts == nullptr &&
           added.uniques == nullptr && added.dflts == nullptr;
  }

  void read_remarks() {
    std::istringstream lines(module_->dsc != nullptr ? module_->dsc : "");
    for (std::string line; std::getline(lines, line);) {
      const std::string_view text = trimmed(line);
      if (text.starts_with("- ")) {
        result_.remarks.emplace_back(text.substr(2));
      }
    }
  }

  const lys_module *module_;
  const ly_ctx *in_force_;
  std::string file_;
  deviations result_;
};

// The statements that apply to each leaf, as text.
std::map<const lysc_node *, std::string> statements_by_leaf(const deviations &all, const coverage &of) {
  std::map<const lysc_node *, std::string> statements;
  for (const deviate_kind kind : {deviate_kind::values, deviate_kind::read_only, deviate_kind::not_supported}) {
    for (const deviation &each : all.statements) {
      for (const coverage_row &row : of.client) {
        const bool concerns = each.kind == kind && is_within(row.leaf, each.target) &&
                              (kind == deviate_kind::not_supported || is_config(row.leaf));
        if (!concerns) {
          continue;
        }
        std::string text = kind == deviate_kind::not_supported ? "not supported" : "read-only";
        if (kind == deviate_kind::values) {
          text = "restricted to";
          for (const std::string &value : each.values) {
            text += (text.ends_with("to") ? " " : ", ") + in_quotes(value);
          }
        }
        statements[row.leaf] = text;
      }
    }
  }
  return statements;
}

void compare_remarks(const deviations &stated, const deviations &measured, std::vector<std::string> &lines) {
  const auto holds = [](const std::vector<std::string> &all, const std::string &text) {
    return std::find(all.begin(), all.end(), text) != all.end();
  };
  for (const std::string &remark : stated.remarks) {
    if (!holds(measured.remarks, remark)) {
      lines.push_back(remark + ": stated, but not measured");
    }
  }
  for (const std::string &remark : measured.remarks) {
    if (!holds(stated.remarks, remark)) {
      lines.push_back(remark + ": measured, but not stated");
    }
  }
}

}  // namespace

deviated_models load_with(const schema &modules, const std::string &text, const std::string &file) {
  const ly_ctx *in_force = modules.children(nullptr).front()->module->ctx;
  ly_log_options(LY_LOSTORE);
  ly_ctx *context = nullptr;
  const uint16_t options = LY_CTX_NO_YANGLIBRARY | LY_CTX_DISABLE_SEARCHDIRS | LY_CTX_EXPLICIT_COMPILE;
  if (ly_ctx_new(nullptr, options, &context) != LY_SUCCESS) {
    throw error("libyang cannot create a context");
  }
  deviated_models result{std::unique_ptr<ly_ctx, context_deleter>(context), nullptr};
  ly_ctx_set_module_imp_clb(context, print_module, const_cast<ly_ctx *>(in_force));
  const char *all_features[] = {"*", nullptr};
  for (const std::string_view module : modules.modules()) {
    if (ly_ctx_load_module(context, module.data(), nullptr, all_features) == nullptr) {
      throw_last_error(context, std::string(module));
    }
  }
  lys_module *module = nullptr;
  if (lys_parse_mem(context, text.c_str(), LYS_IN_YANG, &module) != LY_SUCCESS ||
      ly_ctx_compile(context) != LY_SUCCESS) {
    throw_last_error(context, file);
  }
  result.module = module;
  return result;
}

deviations read_deviations(const std::string &text, const std::string &file, const schema &modules) {
  const deviated_models models = load_with(modules, text, file);
  return deviation_reader(models.module, modules.children(nullptr).front()->module->ctx, file).read();
}

std::vector<std::string> drift(const deviations &stated, const deviations &measured, const coverage &of) {
  const auto claims = statements_by_leaf(stated, of);
  const auto found = statements_by_leaf(measured, of);
  std::vector<std::string> lines;
  for (const coverage_row &row : of.client) {
    const auto claim = claims.find(row.leaf);
    const auto fact = found.find(row.leaf);
    if (claim != claims.end() && fact == found.end()) {
      lines.push_back(path(row.leaf) + ": stated as " + claim->second + ", but is mapped");
    } else if (claim == claims.end() && fact != found.end()) {
      lines.push_back(path(row.leaf) + ": is " + fact->second + ", but not stated so");
    } else if (claim != claims.end() && claim->second != fact->second) {
      lines.push_back(path(row.leaf) + ": stated as " + claim->second + ", but is " + fact->second);
    }
  }
  for (const deviation &each : stated.statements) {
    const bool is_known = std::any_of(of.client.begin(), of.client.end(),
                                      [&](const coverage_row &row) { return is_within(row.leaf, each.target); });
    if (!is_known) {
      lines.push_back(schema_path(each.target) + ": stated, but the plug-in does not serve it");
    }
  }
  compare_remarks(stated, measured, lines);
  return lines;
}

}  // namespace yfw
