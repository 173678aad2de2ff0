// The JSON of reports (docs/json.md).
#pragma once

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ymap {

// Writes members to the current object, in the order of the calls. Objects and lists are only written as a whole, so
// that the result is always valid JSON.
class json_report {
 public:
  // One object, whose members `write` adds; ends with a newline.
  static std::string with(const std::function<void(json_report &)> &write);

  void text(std::string_view name, std::string_view value);
  // Omitted when there is no value.
  void text(std::string_view name, const std::optional<std::string> &value);
  void text(std::string_view name, const std::string &value) {
    text(name, std::string_view(value));
  }
  void text(std::string_view name, const char *value) {
    text(name, std::string_view(value));
  }
  // Omitted when it is empty.
  void text_if_any(std::string_view name, std::string_view value);
  void number(std::string_view name, size_t value);
  void flag(std::string_view name, bool value);
  void texts(std::string_view name, const std::vector<std::string> &values);
  // `value` is JSON.
  void json(std::string_view name, const std::string &value);

  template <typename write_t>
  void object(std::string_view name, const write_t &write) {
    key(name);
    out_.StartObject();
    write();
    out_.EndObject();
  }

  // A list of objects, one per item, whose members `write` adds.
  template <typename items_t, typename write_t>
  void list(std::string_view name, const items_t &items, const write_t &write) {
    key(name);
    out_.StartArray();
    for (const auto &item : items) {
      out_.StartObject();
      write(item);
      out_.EndObject();
    }
    out_.EndArray();
  }

 private:
  json_report() {
    out_.SetIndent(' ', 2);
  }
  void key(std::string_view name);
  void write(std::string_view value);

  rapidjson::StringBuffer buffer_;
  rapidjson::PrettyWriter<rapidjson::StringBuffer> out_{buffer_};
};

}  // namespace ymap
