#include "trace_points.hpp"

#include <regex>
#include <stdexcept>

namespace support {

std::vector<trace_point> parsed(const std::vector<std::string> &ring) {
  static const std::regex form("#([0-9]+): (TRC|ERR): (\\w+):([0-9]+) ctx=(0x[0-9a-f]+),");
  std::vector<trace_point> points;
  for (const std::string &line : ring) {
    std::smatch part;
    if (!std::regex_search(line, part, form, std::regex_constants::match_continuous)) {
      throw std::runtime_error("not a long-form line: " + line);
    }
    points.push_back({static_cast<uint32_t>(std::stoul(part[1])), part[2], part[3], std::stoi(part[4]), part[5],
                      part.suffix().str()});
  }
  return points;
}

}  // namespace support
