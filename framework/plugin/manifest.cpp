#include "yfw/manifest.hpp"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

#include <algorithm>
#include <fstream>
#include <initializer_list>
#include <sstream>

#include "yfw.h"
#include "yfw/error.hpp"

namespace yfw {
namespace {

using value = rapidjson::Value;

[[noreturn]] void fail(const std::filesystem::path &file, const std::string &path, const std::string &text) {
  throw error(place{file.string(), 0, path}, text);
}

// Hands out the members of one JSON object and fails on what is missing or unknown.
class object_reader {
 public:
  object_reader(const value &object, std::filesystem::path file, std::string path)
      : object_(object), file_(std::move(file)), path_(std::move(path)) {
    if (!object.IsObject()) {
      fail(file_, path_, "is not an object");
    }
  }

  void allow(std::initializer_list<const char *> names) const {
    for (const auto &member : object_.GetObject()) {
      const std::string name = member.name.GetString();
      if (std::none_of(names.begin(), names.end(), [&](const char *known) { return name == known; })) {
        fail(file_, path_, "unknown member '" + name + "'");
      }
    }
  }

  std::string text(const char *name) const {
    const auto member = object_.FindMember(name);
    if (member == object_.MemberEnd() || !member->value.IsString()) {
      fail(file_, path_, "requires a string '" + std::string(name) + "'");
    }
    return {member->value.GetString(), member->value.GetStringLength()};
  }

  direction which_direction() const {
    const std::string name = text("direction");
    if (name != "ox" && name != "xo") {
      fail(file_, path_, "invalid direction '" + name + "', expected 'ox', 'xo'");
    }
    return name == "ox" ? direction::ox : direction::xo;
  }

  unsigned number(const char *name) const {
    const auto member = object_.FindMember(name);
    if (member == object_.MemberEnd() || !member->value.IsUint()) {
      fail(file_, path_, "requires a number '" + std::string(name) + "'");
    }
    return member->value.GetUint();
  }

  // Calls `read` with a reader of each object of array `name`; an absent array is an empty one.
  template <typename read_t>
  void each(const char *name, read_t read) const {
    const auto member = object_.FindMember(name);
    if (member == object_.MemberEnd()) {
      return;
    }
    if (!member->value.IsArray()) {
      fail(file_, path_ + "/" + name, "is not an array");
    }
    unsigned index = 0;
    for (const value &element : member->value.GetArray()) {
      read(object_reader(element, file_, path_ + "/" + name + "[" + std::to_string(index++) + "]"));
    }
  }

 private:
  const value &object_;
  std::filesystem::path file_;
  std::string path_;
};

unsigned line_of(const std::string &text, size_t offset) {
  return 1 + static_cast<unsigned>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(offset), '\n'));
}

}  // namespace

std::filesystem::path manifest::beside(std::filesystem::path library) {
  return library.replace_extension(".manifest.json");
}

manifest manifest::read(const std::filesystem::path &file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) {
    throw error(place{file.string(), 0, {}}, "cannot read the plug-in's manifest");
  }
  std::ostringstream buffer;
  buffer << stream.rdbuf();
  return parse(buffer.str(), file);
}

manifest manifest::parse(const std::string &text, const std::filesystem::path &file) {
  rapidjson::Document document;
  document.Parse<rapidjson::kParseIterativeFlag>(text.data(), text.size());
  if (document.HasParseError()) {
    throw error(place{file.string(), line_of(text, document.GetErrorOffset()), {}},
                std::string("not JSON: ") + rapidjson::GetParseError_En(document.GetParseError()));
  }

  manifest result;
  const object_reader top(document, file, "");
  top.allow({"abi-version", "entry-points", "lists", "defaults"});
  if (const unsigned version = top.number("abi-version"); version != YFW_ABI_VERSION) {
    fail(file, "/abi-version",
         "invalid ABI version '" + std::to_string(version) + "', expected '" + std::to_string(YFW_ABI_VERSION) + "'");
  }
  top.each("entry-points", [&](const object_reader &entry) {
    entry.allow({"direction", "module", "at", "function"});
    result.entry_points.push_back(
        {entry.which_direction(), entry.text("module"), entry.text("at"), entry.text("function")});
  });
  top.each("lists", [&](const object_reader &pair) {
    pair.allow({"high", "high-key", "low", "low-key"});
    result.lists.push_back({pair.text("high"), pair.text("high-key"), pair.text("low"), pair.text("low-key")});
  });
  top.each("defaults", [&](const object_reader &entry) {
    entry.allow({"direction", "at", "function"});
    result.defaults.push_back({entry.which_direction(), entry.text("at"), entry.text("function")});
  });
  return result;
}

const list_pair *manifest::pair_of_low(std::string_view path) const {
  const auto found = std::find_if(lists.begin(), lists.end(), [&](const list_pair &pair) { return pair.low == path; });
  return found == lists.end() ? nullptr : &*found;
}

}  // namespace yfw
