// Texts made to hurt.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace hostile {

struct input {
  std::string name;
  std::string text;
  std::string message;  // what follows the name of the file in the one line that is printed
};

// What a failure prints of it.
inline void PrintTo(const input &row, std::ostream *to) {
  *to << row.name;
}

// As a client's request, and as native data.
std::vector<input> client_inputs();
std::vector<input> native_inputs();

// What stands around the value of one leaf, in either format.
struct frame {
  std::string before, after;
};

frame client_xml();   // of mac-address
frame client_json();  // of mac-address
frame native_xml();   // of speed
frame native_json();  // of speed

}  // namespace hostile
