#include "yfw/internal/plugin_call.hpp"

namespace yfw {

static call_tap *installed = nullptr;

void install_call_tap(call_tap *tap) {
  installed = tap;
}

call_tap *installed_call_tap() {
  return installed;
}

std::string_view to_string(call_form form) {
  switch (form) {
    case call_form::report_defaults:
      return "report-defaults";
    case call_form::create_defaults:
      return "create-defaults";
    case call_form::entry:
      break;
  }
  return "entry";
}

uint32_t call_directly(context &ctx, const plugin &mapping, call_form form, const std::string &function,
                       yfw_node_t *node) {
  const active_scope scope(ctx);
  switch (form) {
    case call_form::report_defaults:
      return mapping.function<report_defaults_function>(function)(nullptr, &ctx, nullptr, &ctx.output_root);
    case call_form::create_defaults:
      return mapping.function<create_defaults_function>(function)(nullptr, &ctx, node, &ctx.output_root);
    case call_form::entry:
      break;
  }
  return mapping.function<entry_function>(function)(&ctx, node, &ctx.output_root);
}

uint32_t call_plugin(context &ctx, const plugin &mapping, call_form form, const std::string &function,
                     yfw_node_t *node) {
  const auto tapped = installed != nullptr ? installed->begin(ctx, form, function, node) : nullptr;
  const uint32_t status = call_directly(ctx, mapping, form, function, node);
  if (tapped != nullptr) {
    tapped->finish(status);
  }
  return status;
}

}  // namespace yfw
