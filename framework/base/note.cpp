#include "yfw/note.hpp"

namespace yfw {

std::string to_string(const note &which) {
  return message_line(which.where, which.text);
}

}  // namespace yfw
