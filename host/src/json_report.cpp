#include "json_report.hpp"

#include <rapidjson/document.h>

namespace ymap {

std::string json_report::with(const std::function<void(json_report &)> &write) {
  json_report report;
  report.out_.StartObject();
  write(report);
  report.out_.EndObject();
  return std::string(report.buffer_.GetString(), report.buffer_.GetSize()) + "\n";
}

void json_report::text(std::string_view name, std::string_view value) {
  key(name);
  write(value);
}

void json_report::text(std::string_view name, const std::optional<std::string> &value) {
  if (value) {
    text(name, *value);
  }
}

void json_report::text_if_any(std::string_view name, std::string_view value) {
  if (!value.empty()) {
    text(name, value);
  }
}

void json_report::number(std::string_view name, size_t value) {
  key(name);
  out_.Uint64(value);
}

void json_report::flag(std::string_view name, bool value) {
  key(name);
  out_.Bool(value);
}

void json_report::texts(std::string_view name, const std::vector<std::string> &values) {
  key(name);
  out_.StartArray();
  for (const std::string &value : values) {
    write(value);
  }
  out_.EndArray();
}

void json_report::json(std::string_view name, const std::string &value) {
  key(name);
  rapidjson::Document parsed;
  parsed.Parse(value.data(), value.size()).Accept(out_);
}

void json_report::key(std::string_view name) {
  out_.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
}

void json_report::write(std::string_view value) {
  out_.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
}

}  // namespace ymap
