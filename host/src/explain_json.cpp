#include "explain_reports.hpp"
#include "json_report.hpp"
#include "yfw/node.hpp"

namespace ymap {
namespace {

class explain_json {
 public:
  explain_json(const yfw::explanation &explanation, json_report &out) : explanation_(explanation), out_(out) {}

  void write() {
    out_.text("path", explanation_.path);
    out_.text("module", yfw::module_name(explanation_.leaf));
    out_.flag("config", yfw::is_config(explanation_.leaf));
    out_.texts("sample-keys", explanation_.sample_keys);
    out_.list("requests", explanation_.requests, [&](const yfw::explained_request &each) { add(each); });
    out_.list("replies", explanation_.replies, [&](const yfw::explained_reply &each) { add(each); });
  }

 private:
  void add(const yfw::explained_request &request) {
    out_.text("operation", request.operation);
    out_.text("value", request.value);
    out_.text_if_any("rejection", request.rejection);
    out_.text_if_any("answer", request.answer);
    out_.list("native", request.calls, [&](const yfw::native_operation &call) { add(call); });
    out_.texts("reported-by", request.reported_by);
    add_walk(request.walk);
    out_.list("values", request.values, [&](const yfw::value_mapping &each) {
      out_.text("value", each.value);
      out_.texts("results", each.results);
      out_.text_if_any("rejection", each.rejection);
    });
    add_leaves("before", request.before);
    add_leaves("after", request.after);
  }

  void add(const yfw::native_operation &call) {
    out_.text("operation", call.kind == yfw::operation_kind::read ? "read" : yfw::operation_word(call.operation));
    out_.text("path", call.path());
    out_.text("namespace", yfw::ns(call.steps.back().node));
    out_.text("value", call.value);
    out_.number("flag", call.flag);
  }

  void add(const yfw::explained_reply &reply) {
    out_.text("value", reply.value);
    out_.text_if_any("rejection", reply.rejection);
    add_leaves("reported", reply.reported);
    std::vector<std::string> notes;
    for (const yfw::note &each : reply.notes) {
      notes.push_back(yfw::one_line(each.text));
    }
    out_.texts("warnings", notes);
    add_walk(reply.walk);
  }

  void add_leaves(std::string_view name, const std::vector<yfw::reported_leaf> &leaves) {
    out_.list(name, leaves, [&](const yfw::reported_leaf &leaf) {
      out_.text("path", leaf.path);
      out_.text("value", leaf.value);
    });
  }

  void add_walk(const std::vector<yfw::traced_function> &walk) {
    if (const yfw::traced_function *answer = mapping_function(walk, explanation_.leaf); answer != nullptr) {
      out_.text("mapped-by", answer->name);
    }
    out_.list("functions", walk, [&](const yfw::traced_function &function) {
      out_.text("name", function.name);
      out_.text("role", yfw::to_string(function.role));
      out_.number("line", function.line);
      out_.number("depth", function.depth);
      out_.texts("messages", function.messages);
    });
  }

  const yfw::explanation &explanation_;
  json_report &out_;
};

}  // namespace

std::string explanation_as_json(const yfw::explanation &explanation) {
  return json_report::with([&](json_report &out) { explain_json(explanation, out).write(); });
}

}  // namespace ymap
