// The property of native leaves: from native data to the client model and back.
#include <sstream>

#include "roundtrip_internal.hpp"
#include "yfw/internal/coverage_values.hpp"
#include "yfw/reply.hpp"
#include "yfw/writer.hpp"

namespace yfw {
namespace {

void require_valid(const data_node *first, const schema &modules) {
  each_node(first, [&](const data_node &node) {
    if (const auto value = node.value; value && !modules.check_value(node.schema, *value).ok) {
      throw error("reports " + in_quotes(*value) + ", an invalid value, as '" + path(node.schema) + "'");
    }
    require_valid(node.first_child, modules);
  });
}

class native_check {
 public:
  native_check(roundtrip_run &run, const lysc_node *leaf) : run_(run), leaf_(leaf), steps_(run.steps_to(leaf)) {}

  void check(const std::string &value) {
    ++run_.count(property::native_stable).tried;
    document native = request_for(steps_, run_.modules, no_operation, value);
    std::optional<reply> all, config;
    try {
      all = translate_reply(native, run_.mapping, {.wanted = content::all, .checks_values = false}, run_.log);
      config = translate_reply(native, run_.mapping, {.wanted = content::config, .checks_values = false}, run_.log);
    } catch (const error &) {
      ++run_.count(property::native_stable).rejected;
      return;
    }
    try {
      require_valid(all->data.first(), run_.modules);
      require_same(value, *config);
    } catch (const error &fault) {
      run_.report(property::native_stable, leaf_, value, fault.text(),
                  text_for(steps_, run_.modules, no_operation, value));
    }
  }

 private:
  // Operational state is only reported.
  void require_same(const std::string &value, const reply &reported) {
    if (!is_config(leaf_)) {
      return;
    }
    const std::string warning = reported.notes.empty() ? "" : "; it " + one_line(reported.notes.front().text);
    memory_device again(run_.modules);
    if (!leaves_of(reported.data).empty()) {
      std::ostringstream text;
      write_json(text, reported.data);
      document edit = document::read(text.str(), "", run_.modules);
      (void)run_.service(again).edit(edit, bare_request(edit, client_operation::edit));
    }
    const std::vector<std::string> got = stored(again);
    if (got != std::vector{run_.modules.check_value(leaf_, value).canonical}) {
      throw error("becomes " + (got.empty() ? "nothing" : in_quotes(got.front())) + " when a client sets what it read" +
                  warning);
    }
  }

  std::vector<std::string> stored(const memory_device &native) const {
    const native_operation read{operation_kind::read, steps_, {}, YFW_OPERATION_MERGE, nullptr};
    return values_of(native.select({&read, 1}));
  }

  roundtrip_run &run_;
  const lysc_node *leaf_;
  const std::vector<path_step> steps_;
};

}  // namespace

void check_native_leaf(roundtrip_run &run, const lysc_node *leaf) {
  native_check checks(run, leaf);
  for (const std::string &value : thorough_values(run.modules, leaf)) {
    checks.check(value);
  }
}

}  // namespace yfw
