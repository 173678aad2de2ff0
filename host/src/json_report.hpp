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

// Writes members to the object that is open, in the order of the calls. Only whole objects and lists can be written, so
// that the result is JSON in any case.
class json_report {
 public:
  // One object, whose members `write` adds; ends with a line feed.
  static std::string with(const std::function<void(json_report &)> &write);

  void text(std::string_view name, std::string_view value);
  // Absent when there is none.
  void text(std::string_view name, const std::optional<std::string> &value);
  void text(std::string_view name, const std::string &value) {
    text(name, std::string_view(value));
  }
  void text(std::string_view name, const char *value) {
    text(name, std::string_view(value));
  }
  // Absent when it is empty.
  void text_if_any(std::string_view name, std::string_view value);
  void number(std::string_view name, size_t value);
  void flag(std::string_view name, bool value);
  void texts(std::string_view name, const std::vector<std::string> &values);
  // A value that is JSON already.
  void json(std::string_view name, const std::string &value);

  template <typename write_t>
  void object(std::string_view name, const write_t &write) {
    key(name);
    out_.StartObject();
    write();
    out_.EndObject();
  }

  // A list of objects, one an item, to which `write` adds what it tells of the item.
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
