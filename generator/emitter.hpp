// Writes text with named holes.
#pragma once

#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace ymapgen {

class emitter {
 public:
  using hole_values = std::initializer_list<std::pair<std::string_view, std::string>>;

  // `always` fills holes in every text.
  explicit emitter(std::map<std::string, std::string, std::less<>> always) : always_(std::move(always)) {}

  // Appends `text` with each $name$ replaced by its value, which is taken as it is. Throws std::logic_error for a hole
  // that has none.
  void put(std::string_view text, hole_values values = {});

  // The same text, returned instead of appended.
  std::string filled(std::string_view text, hole_values values = {}) const;

  const std::string &text() const {
    return text_;
  }

 private:
  const std::string &value_of(std::string_view name, hole_values values) const;

  std::map<std::string, std::string, std::less<>> always_;
  std::string text_;
};

}  // namespace ymapgen
