#include "plugin_call.hpp"

#include "capture_writer.hpp"

namespace yfw {

std::string_view word(call_form form) {
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
  const auto capture = capture_writer::begin(ctx, form, function, node);
  const uint32_t status = call_directly(ctx, mapping, form, function, node);
  if (capture != nullptr) {
    capture->finish(status);
  }
  return status;
}

}  // namespace yfw
