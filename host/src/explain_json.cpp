#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include "explain_reports.hpp"
#include "yfw/node.hpp"

namespace ymap {
namespace {

class json_report {
 public:
  explicit json_report(const yfw::explanation &told) : told_(told) {
    out_.SetIndent(' ', 2);
  }

  std::string text() {
    out_.StartObject();
    member("path", told_.path);
    member("module", yfw::module_name(told_.leaf));
    out_.Key("config");
    out_.Bool(yfw::is_config(told_.leaf));
    texts("made-up-keys", told_.made_up_keys);
    list("requests", told_.requests, [&](const yfw::explained_request &each) { add(each); });
    list("replies", told_.replies, [&](const yfw::explained_reply &each) { add(each); });
    out_.EndObject();
    return std::string(buffer_.GetString(), buffer_.GetSize()) + "\n";
  }

 private:
  void text(std::string_view value) {
    out_.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
  }

  void member(const char *name, std::string_view value) {
    out_.Key(name);
    text(value);
  }

  template <typename item_t, typename write_t>
  void list(const char *name, const std::vector<item_t> &items, const write_t &write) {
    out_.Key(name);
    out_.StartArray();
    for (const item_t &item : items) {
      write(item);
    }
    out_.EndArray();
  }

  void texts(const char *name, const std::vector<std::string> &values) {
    list(name, values, [&](const std::string &each) { text(each); });
  }

  void add(const yfw::explained_request &request) {
    out_.StartObject();
    member("operation", request.operation);
    if (request.value) {
      member("value", *request.value);
    }
    if (!request.refusal.empty()) {
      member("refusal", request.refusal);
    }
    list("native", request.calls, [&](const yfw::native_call &call) { add(call); });
    add_walk(request.walk);
    list("values", request.values, [&](const yfw::value_mapping &each) { add(each); });
    add_leaves("before", request.before);
    add_leaves("after", request.after);
    out_.EndObject();
  }

  void add(const yfw::native_call &call) {
    out_.StartObject();
    member("operation", call.kind == yfw::call_kind::read ? "read" : yfw::operation_word(call.operation));
    member("path", call.path());
    member("namespace", yfw::ns(call.steps.back().node));
    if (call.value) {
      member("value", *call.value);
    }
    out_.Key("flag");
    out_.Uint(call.flag);
    out_.EndObject();
  }

  void add(const yfw::value_mapping &mapping) {
    out_.StartObject();
    member("value", mapping.value);
    texts("results", mapping.results);
    if (!mapping.refusal.empty()) {
      member("refusal", mapping.refusal);
    }
    out_.EndObject();
  }

  void add(const yfw::explained_reply &reply) {
    out_.StartObject();
    member("value", reply.value);
    if (!reply.refusal.empty()) {
      member("refusal", reply.refusal);
    }
    add_leaves("reported", reply.reported);
    texts("notes", reply.notes);
    add_walk(reply.walk);
    out_.EndObject();
  }

  void add_leaves(const char *name, const std::vector<yfw::reported_leaf> &leaves) {
    list(name, leaves, [&](const yfw::reported_leaf &leaf) {
      out_.StartObject();
      member("path", leaf.path);
      member("value", leaf.value);
      out_.EndObject();
    });
  }

  void add_walk(const std::vector<yfw::traced_function> &walk) {
    if (const yfw::traced_function *answer = answering(walk, told_.leaf); answer != nullptr) {
      member("answered-by", answer->name);
    }
    list("functions", walk, [&](const yfw::traced_function &function) {
      out_.StartObject();
      member("name", function.name);
      member("role", yfw::word(function.role));
      out_.Key("line");
      out_.Uint(function.line);
      out_.Key("depth");
      out_.Uint(function.depth);
      texts("said", function.said);
      out_.EndObject();
    });
  }

  const yfw::explanation &told_;
  rapidjson::StringBuffer buffer_;
  rapidjson::PrettyWriter<rapidjson::StringBuffer> out_{buffer_};
};

}  // namespace

std::string explanation_as_json(const yfw::explanation &told) {
  return json_report(told).text();
}

}  // namespace ymap
