#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>

#include "commands.hpp"
#include "input.hpp"
#include "json_report.hpp"
#include "setup.hpp"
#include "yfw/message.hpp"
#include "yfw/node.hpp"
#include "yfw/plan.hpp"

namespace ymap {
namespace {

constexpr const char *plan_help =
    "Examples:\n"
    "  ymap plan examples/set-speed.xml\n"
    "  ymap plan --format json examples/set-mac.json\n\n"
    "FILE is an <edit-config> message, or a bare data tree, which is merged, in XML or RFC 7951 JSON. Each\n"
    "native edit is printed with its source node, the client's node that causes it. Nodes with errors are\n"
    "skipped and the others are planned, so that one run reports all errors, on standard error; a leaf\n"
    "without a native edit is an error. Native reads are those that the client's operation or the plug-in\n"
    "needs. Nothing is changed.";

struct plan_options {
  std::string file;
  setup_options setup;
  bool as_json = false;
};

// A source node: the client's node that causes a native edit.
struct plan_cause {
  yfw::place where;
  std::string_view operation;
  const char *value;
  bool is_whole;
};

class plan_report {
 public:
  plan_report(const yfw::document &document, const yfw::edit_plan &plan) : document_(document), plan_(plan) {}

  std::string text() const {
    std::ostringstream out;
    size_t number = 0;
    for (const yfw::native_operation &call : plan_.request.calls) {
      out << std::setw(2) << ++number << ". " << std::left << std::setw(8) << operation(call) << std::right
          << escaped(call.path());
      if (call.value) {
        out << " = " << yfw::in_quotes(*call.value);
      }
      out << "\n    for     " << cause_text(call) << '\n';
    }
    out << (number == 0 ? "no native edits\n" : "");
    out << "native reads needed:" << (plan_.reads.empty() ? " none\n" : "\n");
    for (const yfw::needed_read &read : plan_.reads) {
      out << "    read    " << escaped(read.path) << "\n    for     " << escaped(reason(read)) << '\n';
    }
    return out.str();
  }

  std::string json() const {
    return json_report::with([&](json_report &out) {
      out.list("edits", plan_.request.calls, [&](const yfw::native_operation &call) { add_edit(out, call); });
      out.list("reads", plan_.reads, [&](const yfw::needed_read &read) {
        out.text("path", read.path);
        out.text("reason", reason(read));
      });
      out.list("problems", plan_.problems, [&](const yfw::client_error &problem) {
        add_place(out, problem.where());
        out.text("error-tag", to_string(problem.tag()));
        out.text("error-message", problem.text());
      });
    });
  }

 private:
  static std::string_view operation(const yfw::native_operation &call) {
    return yfw::operation_word(call.operation);
  }

  plan_cause cause_of(const yfw::native_operation &call) const {
    const bool is_whole = whole_source_node(call) != nullptr;
    const uint32_t operation = yfw::operation_in_force(*call.source_node, plan_.request.client.default_operation);
    return {document_.where(*call.source_node), yfw::operation_word(operation),
            is_whole ? nullptr : call.source_node->value, is_whole};
  }

  // Why the plan needs a native read.
  std::string reason(const yfw::needed_read &read) const {
    if (read.source_node == nullptr) {
      return "the plug-in, which reads it for the list entry";
    }
    const yfw::place where = document_.where(*read.source_node);
    const uint32_t operation = yfw::operation_in_force(*read.source_node, plan_.request.client.default_operation);
    const bool is_created = operation == YFW_OPERATION_CREATE;
    return where.path + (is_created ? " must not exist  (" : " must exist  (") +
           (operation == yfw::no_operation ? "none" : std::string(yfw::operation_word(operation))) + ", " + where.file +
           ":" + std::to_string(where.line) + ")";
  }

  std::string cause_text(const yfw::native_operation &call) const {
    if (call.source_node == nullptr) {
      return "the request as a whole";
    }
    const plan_cause cause = cause_of(call);
    std::string text = escaped(cause.where.path) + (cause.value != nullptr ? " = " + yfw::in_quotes(cause.value) : "");
    text += (cause.is_whole ? "  (implied by " : "  (") + std::string(cause.operation) + ", ";
    return text + cause.where.file + ":" + std::to_string(cause.where.line) + ")";
  }

  static void add_place(json_report &out, const yfw::place &where) {
    out.text("file", where.file);
    out.number("line", where.line);
    out.text("path", where.path);
  }

  void add_edit(json_report &out, const yfw::native_operation &call) const {
    out.text("operation", operation(call));
    out.text("path", call.path());
    out.text("namespace", yfw::ns(call.steps.back().node));
    out.text("value", call.value);
    if (call.source_node != nullptr) {
      out.object("cause", [&] { add_cause(out, cause_of(call)); });
    }
  }

  static void add_cause(json_report &out, const plan_cause &cause) {
    add_place(out, cause.where);
    out.text("operation", cause.operation);
    if (cause.value != nullptr) {
      out.text("value", cause.value);
    }
    out.flag("implied", cause.is_whole);
  }

  const yfw::document &document_;
  const yfw::edit_plan &plan_;
};

void run(const plan_options &options) {
  setup with(options.setup);
  yfw::document document = yfw::document::read(read_text(options.file), display_name(options.file), with.schema());
  yfw::client_request client = read_client_request(document, yfw::client_operation::edit);
  const yfw::edit_plan plan = plan_request(document, std::move(client), with.plugin(), with.trace());
  const plan_report report(document, plan);
  write_result(options.as_json ? report.json() : report.text());
  write_notes(plan.request.notes);
  for (const yfw::client_error &problem : plan.problems) {
    std::cerr << "ymap: " << problem.what() << '\n';
  }
  if (!plan.problems.empty()) {
    throw failure_reported();
  }
}

}  // namespace

void add_plan(CLI::App &app) {
  CLI::App &command = *app.add_subcommand("plan", "Show the native edits that an edit causes, and all its errors.");
  command.footer(plan_help);
  const auto options = std::make_shared<plan_options>();
  command.add_option("FILE", options->file, "the edit, '-' for standard input")->required()->check(empty_name_error);
  add_setup(command, options->setup);
  add_format(command, options->as_json);
  command.callback([options] { run(*options); });
}

}  // namespace ymap
