#include "emitter.hpp"

#include <algorithm>
#include <stdexcept>

namespace ymapgen {

const std::string &emitter::value_of(std::string_view name, hole_values values) const {
  const auto *value =
      std::find_if(values.begin(), values.end(), [name](const auto &candidate) { return candidate.first == name; });
  if (value != values.end()) {
    return value->second;
  }
  const auto fixed = always_.find(name);
  if (fixed == always_.end()) {
    throw std::logic_error("no value for the hole '" + std::string(name) + "'");
  }
  return fixed->second;
}

std::string emitter::filled(std::string_view text, hole_values values) const {
  std::string result;
  while (true) {
    const std::size_t begin = text.find('$');
    result += text.substr(0, begin);
    if (begin == std::string_view::npos) {
      return result;
    }
    const std::size_t end = text.find('$', begin + 1);
    result += value_of(text.substr(begin + 1, end - begin - 1), values);
    text.remove_prefix(end + 1);
  }
}

void emitter::put(std::string_view text, hole_values values) {
  text_ += filled(text, values);
}

}  // namespace ymapgen
