// The embedded device: native data, configuration and operational state together, for working without hardware.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "yfw/data_tree.hpp"
#include "yfw/document.hpp"
#include "yfw/native_operation.hpp"
#include "yfw/writer.hpp"

namespace yfw {

// A node of native data. Tag and namespace belong to the schema or to the document that it was read from.
struct native_node {
  const lysc_node *schema = nullptr;  // null when no module defines it
  std::string_view ns, tag;
  std::optional<std::string> value;  // of leaves; identities without prefix
  std::vector<native_node> children;
};

class device {
 public:
  // From native data as XML or JSON, bare or within rpc-reply, data or config. What the modules do not know is kept.
  // Throws `error` for a message that holds no data, for operations, for a list entry without its keys, and for nodes
  // that stand there twice.
  static device read(document native);

  // The reply to the read calls: what they name, nothing else. A list entry that a call leads to comes with its keys,
  // also when it has none of the leaves that are asked for, as the nodes that a subtree filter matches by content do
  // (RFC 6241, section 6.2.5). A step without keys leads to all entries. Other calls are passed over.
  data_tree select(std::span<const native_operation> calls) const;

  // Nothing but the data, in the format that was read, and for XML within the same elements. Comments and layout are
  // not kept. Throws `error` when something that was read could not be written as it was: unknown data in JSON, whose
  // types are not known, and values with XML prefixes that no module's type explains.
  std::string text() const;

  const schema &modules() const {
    return source_->modules();
  }
  const std::string &file() const {
    return source_->file();
  }

 private:
  friend class device_edit;
  explicit device(document native) : source_(std::make_shared<document>(std::move(native))) {}
  std::span<const yfw_node_t> open_envelopes();
  void fill(std::vector<native_node> &level, std::span<const yfw_node_t> from);
  native_node loaded(const yfw_node_t &from);
  void load_value(native_node &to, const yfw_node_t &from);

  std::shared_ptr<const document> source_;
  std::vector<wrapper> envelopes_;
  std::vector<native_node> roots_;
  place unwritable_;
  std::string why_unwritable_;
};

// What became of one native node. No text: absent; of list entries the text is empty. Containers have no part in it.
struct device_change {
  std::string path;
  std::optional<std::string> before, after;
};

// Edits that take effect together, or not at all.
class device_edit {
 public:
  explicit device_edit(device &target) : target_(target), roots_(target.roots_) {}

  // Carries out a set or delete as RFC 6241, section 7.2, tells. List entries and containers on the way to a value are
  // made; of what a delete leaves, containers without content go, while a list entry stays, which exists by its keys. A
  // delete makes nothing. Throws `client_error`, without a place and with the native path in its text, for `create` of
  // what is there, `delete` of what is not, operational data, keys, and values that the native model does not have.
  void apply(const native_operation &call);

  // The net effect, in the order in which nodes were first touched.
  std::vector<device_change> changes() const;

  // Makes the device have it.
  void commit() {
    target_.roots_ = std::move(roots_);
  }

 private:
  void set(const native_operation &call);
  void set_leaf(std::vector<native_node> &level, const native_operation &call);
  native_node &reached(std::vector<native_node> &level, const native_operation &call, size_t step);
  native_node *find(std::vector<native_node> &level, const native_operation &call, size_t step);
  void drop_other_cases(std::vector<native_node> &level, const native_operation &call, size_t step);
  bool remove(std::vector<native_node> &level, const native_operation &call, size_t step);
  void forget_places(const native_operation &call, size_t step);
  void note_removal(const native_node &node, const std::string &path);
  void note(const std::string &path, std::optional<std::string> before, std::optional<std::string> after);

  // Where list entries are among the first `size` nodes of a level.
  struct level_index {
    unsigned searches = 0;
    size_t size = 0;
    std::unordered_map<std::string, size_t> places;
  };

  device &target_;
  std::vector<native_node> roots_;
  std::unordered_map<std::string, level_index> indexes_;  // by the path above the level
  std::vector<device_change> journal_;
  std::unordered_map<std::string, size_t> journal_by_path_;
};

// An advisory lock (flock) on a file of that name, which is made when missing and stays. Waits until it is free. Throws
// `error` when it cannot be had.
class file_lock {
 public:
  explicit file_lock(const std::filesystem::path &file);
  ~file_lock();
  file_lock(const file_lock &) = delete;
  file_lock &operator=(const file_lock &) = delete;

 private:
  int file_;
};

// A device in a file. Writers of one file wait for each other; readers wait for nobody and see one whole state.
class device_file {
 public:
  enum class use { read, edit };

  // Reads the file. To edit it, a lock on FILE.lock beside it is held as long as this lives. Symbolic links are
  // followed to the file that they lead to. Throws `error` for a file that is missing, cannot be read or locked, is not
  // a regular one or does not hold native data.
  device_file(const std::filesystem::path &file, const schema &modules, use intent);

  device &content() {
    return *content_;
  }

  // Replaces the file, when opened to be edited: whenever the process or the machine stops, the file is the old or the
  // new one, whole, and once this returns it is the new one, on disk. Its permissions are kept. Throws `error` when
  // that fails; the old file then still stands, unless the error says that the new one does and only its durability is
  // in doubt. FILE.ymap-new exists meanwhile; if the process is killed, the next writer removes it.
  void save();

 private:
  std::filesystem::path name_, target_;
  std::optional<file_lock> lock_;  // on another file: the device's file is a new one after each write
  std::optional<device> content_;
};

}  // namespace yfw
