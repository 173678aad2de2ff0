// Captures: what a plug-in was called with, what it asked of the framework and what came of it, one readable text file
// a call. A capture is replayed without modules, manifest or device: the framework's answers stand in it.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "yfw/plugin.hpp"

namespace yfw {

// While it lives, every call of a plug-in's function in this process writes DIRECTORY/NNNN-FUNCTION.capture, line by
// line as it goes on, so that a plug-in that ends the process leaves what led to it. There may be one at a time.
class capture_session {
 public:
  // Makes the directory. With `is_anonymous`, keys of list entries, and MAC and IP addresses anywhere, are replaced:
  // the same text by the same one in all files. Throws `error` when captures are there already.
  capture_session(std::filesystem::path directory, bool is_anonymous);
  ~capture_session();
  capture_session(const capture_session &) = delete;
  capture_session &operator=(const capture_session &) = delete;

  // The number of calls captured.
  unsigned count() const;

  struct parts;  // of the writer

 private:
  std::unique_ptr<parts> parts_;
};

// Something that a plug-in did: a framework call, a write to a node or record, its return.
struct plugin_event {
  std::string text;  // as a capture has it, on one line
  unsigned line;     // in the capture, or 0
};

class capture {
 public:
  // Throws `error`, with the line, for text that is not a capture. `file` is for messages.
  static capture read(const std::string &text, const std::string &file);

  capture(capture &&) noexcept;
  ~capture();

  const std::string &function() const;

  // What the plug-in did when the capture was taken. Without a return at the end if it did not return.
  const std::vector<plugin_event> &events() const;
  bool has_returned() const;

  struct parts;  // of the replay
  const parts &inside() const {
    return *parts_;
  }

 private:
  explicit capture(std::unique_ptr<parts> inside);
  std::unique_ptr<parts> parts_;
};

// What the plug-in does with the input of the capture. A framework call has the answer that the capture holds for the
// same call with the same arguments; one that it does not hold fails if something was to be found, and else does
// nothing. Throws `error` when the library has no such function.
std::vector<plugin_event> replay(const capture &recorded, const plugin &mapping);

// Where two runs part. Without `expected` or `actual`: one ends before the other.
struct difference {
  std::optional<plugin_event> expected;
  std::optional<plugin_event> actual;

  // Names of the arguments in which two calls of the same function differ.
  std::vector<std::string> differing_arguments() const;
};
std::optional<difference> first_difference(const std::vector<plugin_event> &expected,
                                           const std::vector<plugin_event> &actual);

}  // namespace yfw
