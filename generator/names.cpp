#include "names.hpp"

#include <algorithm>
#include <cctype>

namespace ymapgen {

std::string squashed(const std::string &yang_name) {
  std::string name = yang_name;
  name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
  std::replace(name.begin(), name.end(), '.', '_');
  return name;
}

std::string underscored(const std::string &yang_name) {
  std::string name = yang_name;
  std::replace(name.begin(), name.end(), '-', '_');
  std::replace(name.begin(), name.end(), '.', '_');
  return name;
}

std::string lower_case(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return text;
}

std::string path_part(const std::vector<std::string> &ancestors, const std::string &name) {
  std::string part;
  if (!ancestors.empty()) {
    part = squashed(ancestors.front()) + "_";
  }
  if (ancestors.size() > 1) {
    part += squashed(ancestors.back()) + "_";
  }
  return part + squashed(name);
}

}  // namespace ymapgen
