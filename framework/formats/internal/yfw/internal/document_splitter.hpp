// Cuts the text of a large document between list entries, so that each chunk can be read as a document of its own.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/document.hpp"

namespace yfw {

// No place in the text.
inline constexpr size_t npos = std::string_view::npos;

// The chunk ends before `end`, the next one begins at `next`: in JSON the comma between them belongs to neither.
struct split_point {
  size_t end;
  size_t next;
};

// Looks at no more of the text than it takes to find its way: what is not well-formed is left to the reader of the
// chunks. The text is given as a window that grows at its end and is shortened at its front.
class document_splitter {
 public:
  virtual ~document_splitter() = default;

  virtual data_format format() const = 0;

  // The first place in `window` at or after `least` where an entry of one of the lists begins that is not inside
  // another one; none when the window ends before. The window begins where the last call saw it begin, or at the last
  // cut.
  virtual std::optional<split_point> next_split(std::string_view window, size_t least) = 0;

  // Drops what is before the cut that was found last.
  virtual void drop(size_t bytes) = 0;

  // At the cut that was found last: what makes the text before it, and the text after it, whole. Without line feeds.
  virtual std::string opening() const = 0;
  virtual std::string closing() const = 0;

  // False when something was met that only a reader of the whole can judge: then chunks do not stand for the whole.
  virtual bool is_good() const = 0;
};

// A splitter for the format of a text that begins so. `lists` are schema paths of plain names. Null when the text
// begins neither XML nor JSON.
std::unique_ptr<document_splitter> make_splitter(std::string_view begin, std::vector<std::string> lists);
std::unique_ptr<document_splitter> make_xml_splitter(std::vector<std::string> lists);
std::unique_ptr<document_splitter> make_json_splitter(std::vector<std::string> lists);

// "/a/b" for the names of open nodes: prefixes of namespaces and modules, and envelopes at the top, are left out.
void add_plain_step(std::string &path, std::string_view name);

}  // namespace yfw
