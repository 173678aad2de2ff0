#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include "coverage_reports.hpp"

namespace ymap {
namespace {

constexpr int shape_version = 1;

class json_report {
 public:
  explicit json_report(const coverage_view &view) : view_(view) {
    out_.SetIndent(' ', 1);
  }

  std::string text() {
    out_.StartObject();
    member("format", "ymap-coverage");
    out_.Key("version");
    out_.Int(shape_version);
    out_.Key("only-missing");
    out_.Bool(view_.only_missing);
    out_.Key("summary");
    out_.StartObject();
    add_summary("high", view_.measured.high);
    add_summary("native", view_.measured.native);
    out_.EndObject();
    add_rows("high", view_.measured.high);
    add_rows("native", view_.measured.native);
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

  void add_share(const char *name, const yfw::coverage_share &share) {
    out_.Key(name);
    out_.StartObject();
    out_.Key("mapped");
    out_.Uint64(share.mapped);
    out_.Key("pairs");
    out_.Uint64(share.pairs);
    out_.EndObject();
  }

  void add_summary(const char *name, const std::vector<yfw::coverage_row> &rows) {
    out_.Key(name);
    out_.StartObject();
    add_share("all", share_of(rows));
    for (const yfw::leaf_operation operation : {yfw::leaf_operation::get_config, yfw::leaf_operation::get,
                                                yfw::leaf_operation::set, yfw::leaf_operation::remove}) {
      if (const yfw::coverage_share share = share_of(rows, operation); share.pairs > 0) {
        add_share(word(operation).data(), share);
      }
    }
    out_.EndObject();
  }

  void add_rows(const char *name, const std::vector<yfw::coverage_row> &rows) {
    out_.Key(name);
    out_.StartArray();
    for (const yfw::coverage_row *row : shown_rows(rows, view_.only_missing)) {
      out_.StartObject();
      member("path", yfw::qualified_path(row->leaf));
      out_.Key("config");
      out_.Bool(yfw::is_config(row->leaf));
      out_.Key("operations");
      out_.StartObject();
      for (const yfw::coverage_cell &cell : row->cells) {
        add_cell(cell);
      }
      out_.EndObject();
      out_.EndObject();
    }
    out_.EndArray();
  }

  void add_cell(const yfw::coverage_cell &cell) {
    out_.Key(word(cell.operation).data());
    out_.StartObject();
    member("state", word(cell.state));
    out_.Key("allowed");
    out_.Bool(cell.is_allowed);
    if (!cell.reason.empty()) {
      member("reason", cell.reason);
    }
    out_.Key("paths");
    out_.StartArray();
    for (const lysc_node *target : cell.targets()) {
      text(yfw::qualified_path(target));
    }
    out_.EndArray();
    out_.Key("probes");
    out_.StartArray();
    for (const yfw::leaf_probe &probe : cell.probes) {
      add_probe(probe);
    }
    out_.EndArray();
    out_.EndObject();
  }

  void add_probe(const yfw::leaf_probe &probe) {
    out_.StartObject();
    if (probe.value) {
      member("value", *probe.value);
    }
    out_.Key("mapped");
    out_.Bool(probe.is_mapped());
    if (!probe.refusal.empty()) {
      member("refusal", probe.refusal);
    }
    out_.Key("effects");
    out_.StartArray();
    for (const yfw::probe_effect &effect : probe.effects) {
      out_.StartObject();
      member("kind", word(effect.kind));
      member("path", yfw::qualified_path(effect.node));
      if (effect.value) {
        member("value", *effect.value);
      }
      out_.EndObject();
    }
    out_.EndArray();
    out_.EndObject();
  }

  const coverage_view &view_;
  rapidjson::StringBuffer buffer_;
  rapidjson::PrettyWriter<rapidjson::StringBuffer> out_{buffer_};
};

}  // namespace

std::string coverage_as_json(const coverage_view &view) {
  return json_report(view).text();
}

}  // namespace ymap
