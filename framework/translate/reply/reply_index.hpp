// Where the data of each entry is in the text of a reply, so that all data of one entry can be translated together.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "reply_chunks.hpp"
#include "yfw/manifest.hpp"

namespace yfw {

// A part of the text as a document of its own.
struct chunk_document {
  std::string text;
  unsigned first_line;
};

// Documents that together have all of their entries.
struct whole_entries {
  std::vector<chunk_document> documents;
  size_t most;  // how many entries there are at most, unless keys are not what they seem to be
};

class reply_index {
 public:
  // Reads all of the source, from its beginning. What is between entries goes with the entry before.
  reply_index(chunk_reader &source, const std::vector<list_pair> &lists);

  bool is_at_end() const {
    return group_ == groups_.size();
  }

  // The next entries, as many as have `least` bytes together: each with all that the text has of it, in the order in
  // which their keys appear first.
  whole_entries next(chunk_reader &source, size_t least);

 private:
  struct part {
    size_t begin, end, next;
    unsigned first_line;
    uint32_t opening, closing;  // in `around_`
    uint32_t following;         // the next part of the same group; 0: none
  };
  struct group {
    uint32_t first, last;  // in `parts_`
  };
  uint32_t number_of(const std::string &around);
  void add(const chunk &found, const std::vector<list_pair> &lists, std::unordered_map<std::string, uint32_t> &known);

  std::vector<part> parts_;
  std::vector<group> groups_;
  size_t group_ = 0;  // the next one
  std::vector<std::string> around_;
  std::map<std::string, uint32_t> numbers_;
};

}  // namespace yfw
