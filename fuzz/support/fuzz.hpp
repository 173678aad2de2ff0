// What the fuzzers of the framework share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "target.hpp"
#include "yfw/data_tree.hpp"
#include "yfw/document.hpp"
#include "yfw/error.hpp"
#include "yfw/plugin.hpp"
#include "yfw/schema.hpp"

namespace fuzz {

// The shipped modules and the shipped plug-in, loaded once.
const yfw::schema &modules();
const yfw::plugin &mapping();

// The name that inputs have in messages.
inline constexpr const char *file = "input";

inline std::string text_of(const uint8_t *data, size_t size) {
  return {reinterpret_cast<const char *>(data), size};
}

// Ends the process, with `what` and both texts on standard error, when they differ.
void require_same(std::string_view what, const std::string &expected, const std::string &actual);

// Ends the process when a message could not be printed on one line of a terminal.
void require_printable(const std::string &message);

// Does `work`. An `error` is an answer as any other: its message is returned.
template <typename work_t>
std::optional<std::string> refusal_of(const work_t &work) {
  try {
    work();
  } catch (const yfw::error &refused) {
    require_printable(refused.what());
    return refused.what();
  }
  return std::nullopt;
}

// Reads a text of the format that the target is for; whatever begins otherwise is refused, so that two targets do not
// do the same work. `first` is '<' or '{'.
yfw::document read_document(const std::string &text, char first);

// The data of a document. Throws `error` for names that only JSON can carry.
yfw::data_tree tree_of(const yfw::document &data);

// Texts of a tree. XML has a `data` element around it.
std::string xml_of(const yfw::data_tree &tree);
std::string json_of(const yfw::data_tree &tree);

// Writes a tree in both formats and reads each text again: nothing may be lost or changed but the order of siblings,
// nor refused.
void require_read_back(const yfw::data_tree &tree);

}  // namespace fuzz
