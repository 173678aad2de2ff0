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

// Leaves of `all` that are not in `others`.
std::vector<yfw::reported_leaf> beside(const std::vector<yfw::reported_leaf> &all,
                                       const std::vector<yfw::reported_leaf> &others) {
  std::vector<yfw::reported_leaf> rest = all;
  std::erase_if(rest, [&](const auto &leaf) { return std::ranges::find(others, leaf) != others.end(); });
  return rest;
}

class text_report {
 public:
  explicit text_report(const yfw::explanation &told) : told_(told) {}

  std::string text() {
    out_ << escaped(told_.path) << '\n';
    out_ << "  " << (yfw::is_config(told_.leaf) ? "configuration" : "operational state") << ", of module "
         << yfw::module_name(told_.leaf) << '\n';
    for (const std::string &key : told_.made_up_keys) {
      out_ << "  made up: " << escaped(key) << '\n';
    }
    for (const yfw::explained_request &request : told_.requests) {
      add_request(request);
    }
    for (const yfw::explained_reply &reply : told_.replies) {
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
    if (!request.refusal.empty()) {
      out_ << "  refused: " << request.refusal << '\n';
    }
    if (!request.answer.empty()) {
      out_ << "  the plug-in says: " << request.answer << '\n';
    }
    add_calls(request);
    add_walk(request.walk);
    add_values(request);
    if (request.refusal.empty() && request.operation != "get") {
      add_effect(request);
    }
  }

  void add_calls(const yfw::explained_request &request) {
    if (request.calls.empty()) {
      out_ << "  native: none is named\n";
    }
    for (const std::string &leaf : request.reported_by) {
      out_ << "    but replies report it of " << leaf << '\n';
    }
    for (const yfw::native_operation &call : request.calls) {
      out_ << "  " << (request.refusal.empty() ? "native: " : "the walk gave: ") << to_string(call) << ' '
           << escaped(call.path());
      if (call.value) {
        out_ << " = " << yfw::in_quotes(*call.value);
      }
      out_ << "\n    namespace " << yfw::ns(call.steps.back().node) << ", flag " << call.flag << '\n';
    }
  }

  static std::string name(const yfw::traced_function &function) {
    return function.name + (function.line != 0 ? ":" + std::to_string(function.line) : " (leaves no trace)");
  }

  void add_walk(const std::vector<yfw::traced_function> &walk) {
    if (walk.empty()) {
      out_ << "  answered by none: the plug-in is not called\n";
      return;
    }
    const yfw::traced_function *answer = answering(walk, told_.leaf);
    out_ << "  answered by ";
    if (answer == nullptr) {
      out_ << "none: no function is found for it\n";
    } else {
      out_ << name(*answer) << ", " << yfw::to_string(answer->role) << '\n';
    }
    out_ << "  functions:\n";
    for (const yfw::traced_function &function : walk) {
      const std::string indent(4 + 2 * size_t{function.depth}, ' ');
      out_ << indent << name(function) << "  " << yfw::to_string(function.role) << '\n';
      for (const std::string &text : function.said) {
        out_ << indent << "  says: " << text << '\n';
      }
    }
  }

  void add_values(const yfw::explained_request &request) {
    if (request.values.empty()) {
      return;
    }
    out_ << (request.operation == "get" ? "  values, native to client's:\n" : "  values, client's to native:\n");
    for (const yfw::value_mapping &mapping : request.values) {
      out_ << "    " << yfw::in_quotes(mapping.value);
      for (const std::string &result : mapping.results) {
        out_ << " -> " << yfw::in_quotes(result);
      }
      out_ << (mapping.refusal.empty() ? "" : ": " + mapping.refusal) << '\n';
    }
  }

  void add_effect(const yfw::explained_request &request) {
    const auto added = beside(request.after, request.before);
    const auto gone = beside(request.before, request.after);
    out_ << "  a client reads:" << (added.empty() && gone.empty() ? " nothing else than before\n" : "\n");
    for (const yfw::reported_leaf &leaf : gone) {
      const bool is_changed = std::ranges::find(added, leaf.path, &yfw::reported_leaf::path) != added.end();
      out_ << "    " << (is_changed ? "no longer " : "no more ") << escaped(leaf.path) << " = "
           << yfw::in_quotes(leaf.value) << '\n';
    }
    for (const yfw::reported_leaf &leaf : added) {
      out_ << "    " << escaped(leaf.path) << " = " << yfw::in_quotes(leaf.value) << '\n';
    }
  }

  void add_reply(const yfw::explained_reply &reply) {
    out_ << "\nnative " << yfw::in_quotes(reply.value) << '\n';
    if (!reply.refusal.empty()) {
      out_ << "  refused: " << reply.refusal << '\n';
    }
    for (const yfw::reported_leaf &leaf : reply.reported) {
      out_ << "  " << escaped(leaf.path) << " = " << yfw::in_quotes(leaf.value) << '\n';
    }
    if (reply.reported.empty() && reply.refusal.empty()) {
      out_ << "  reports nothing\n";
    }
    for (const yfw::note &each : reply.notes) {
      out_ << "  note: " << yfw::one_line(each.text) << '\n';
    }
    add_walk(reply.walk);
  }

  const yfw::explanation &told_;
  std::ostringstream out_;
};

}  // namespace

std::string explanation_as_text(const yfw::explanation &told) {
  return text_report(told).text();
}

}  // namespace ymap
