#include <algorithm>
#include <sstream>

#include "explain_reports.hpp"
#include "input.hpp"
#include "yfw/node.hpp"

namespace ymap {
namespace {

const char *to_string(const yfw::native_operation &call) {
  return call.kind == yfw::operation_kind::read ? "read" : yfw::operation_word(call.operation).data();
}

// The leaves of `all` that are not in `others`.
std::vector<yfw::reported_leaf> difference(const std::vector<yfw::reported_leaf> &all,
                                           const std::vector<yfw::reported_leaf> &others) {
  std::vector<yfw::reported_leaf> rest = all;
  std::erase_if(rest, [&](const auto &leaf) { return std::ranges::find(others, leaf) != others.end(); });
  return rest;
}

class text_report {
 public:
  explicit text_report(const yfw::explanation &explanation) : explanation_(explanation) {}

  std::string text() {
    out_ << escaped(explanation_.path) << '\n';
    out_ << "  " << (yfw::is_config(explanation_.leaf) ? "configuration" : "operational state") << ", of module "
         << yfw::module_name(explanation_.leaf) << '\n';
    for (const std::string &key : explanation_.sample_keys) {
      out_ << "  sample key: " << escaped(key) << '\n';
    }
    for (const yfw::explained_request &request : explanation_.requests) {
      add_request(request);
    }
    for (const yfw::explained_reply &reply : explanation_.replies) {
      add_reply(reply);
    }
    return out_.str();
  }

 private:
  void add_request(const yfw::explained_request &request) {
    out_ << '\n' << request.operation;
    if (request.value) {
      out_ << " to " << yfw::in_quotes(*request.value);
    }
    out_ << '\n';
    if (!request.rejection.empty()) {
      out_ << "  rejected: " << request.rejection << '\n';
    }
    if (!request.answer.empty()) {
      out_ << "  plug-in error: " << request.answer << '\n';
    }
    add_calls(request);
    add_walk(request.walk);
    add_values(request);
    if (request.rejection.empty() && request.operation != "get") {
      add_effect(request);
    }
  }

  void add_calls(const yfw::explained_request &request) {
    if (request.calls.empty()) {
      out_ << "  native: none\n";
    }
    for (const std::string &leaf : request.reported_by) {
      out_ << "    replies report it from " << leaf << '\n';
    }
    for (const yfw::native_operation &call : request.calls) {
      out_ << "  " << (request.rejection.empty() ? "native: " : "before the rejection: ") << to_string(call) << ' '
           << escaped(call.path());
      if (call.value) {
        out_ << " = " << yfw::in_quotes(*call.value);
      }
      out_ << "\n    namespace " << yfw::ns(call.steps.back().node) << ", flag " << call.flag << '\n';
    }
  }

  static std::string name(const yfw::traced_function &function) {
    return function.name + (function.line != 0 ? ":" + std::to_string(function.line) : " (no trace)");
  }

  void add_walk(const std::vector<yfw::traced_function> &walk) {
    if (walk.empty()) {
      out_ << "  mapped by: none, the plug-in is not called\n";
      return;
    }
    const yfw::traced_function *answer = mapping_function(walk, explanation_.leaf);
    out_ << "  mapped by: ";
    if (answer == nullptr) {
      out_ << "none, no function was called for it\n";
    } else {
      out_ << name(*answer) << ", " << yfw::to_string(answer->role) << '\n';
    }
    out_ << "  functions:\n";
    for (const yfw::traced_function &function : walk) {
      const std::string indent(4 + 2 * size_t{function.depth}, ' ');
      out_ << indent << name(function) << "  " << yfw::to_string(function.role) << '\n';
      for (const std::string &text : function.messages) {
        out_ << indent << "  trace: " << text << '\n';
      }
    }
  }

  void add_values(const yfw::explained_request &request) {
    if (request.values.empty()) {
      return;
    }
    out_ << (request.operation == "get" ? "  values, native to client:\n" : "  values, client to native:\n");
    for (const yfw::value_mapping &mapping : request.values) {
      out_ << "    " << yfw::in_quotes(mapping.value);
      for (const std::string &result : mapping.results) {
        out_ << " -> " << yfw::in_quotes(result);
      }
      out_ << (mapping.rejection.empty() ? "" : ": " + mapping.rejection) << '\n';
    }
  }

  void add_effect(const yfw::explained_request &request) {
    const auto added = difference(request.after, request.before);
    const auto gone = difference(request.before, request.after);
    out_ << "  a client reads:" << (added.empty() && gone.empty() ? " the same as before\n" : "\n");
    for (const yfw::reported_leaf &leaf : gone) {
      out_ << "    no longer " << escaped(leaf.path) << " = " << yfw::in_quotes(leaf.value) << '\n';
    }
    for (const yfw::reported_leaf &leaf : added) {
      out_ << "    " << escaped(leaf.path) << " = " << yfw::in_quotes(leaf.value) << '\n';
    }
  }

  void add_reply(const yfw::explained_reply &reply) {
    out_ << "\nnative " << yfw::in_quotes(reply.value) << '\n';
    if (!reply.rejection.empty()) {
      out_ << "  rejected: " << reply.rejection << '\n';
    }
    for (const yfw::reported_leaf &leaf : reply.reported) {
      out_ << "  " << escaped(leaf.path) << " = " << yfw::in_quotes(leaf.value) << '\n';
    }
    if (reply.reported.empty() && reply.rejection.empty()) {
      out_ << "  nothing is reported\n";
    }
    for (const yfw::note &each : reply.notes) {
      out_ << "  warning: " << yfw::one_line(each.text) << '\n';
    }
    add_walk(reply.walk);
  }

  const yfw::explanation &explanation_;
  std::ostringstream out_;
};

}  // namespace

std::string explanation_as_text(const yfw::explanation &explanation) {
  return text_report(explanation).text();
}

}  // namespace ymap
