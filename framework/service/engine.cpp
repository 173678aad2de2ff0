#include "yfw/engine.hpp"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <utility>

#include "engine_internal.hpp"
#include "yfw/internal/dispatch.hpp"
#include "yfw/internal/manifest_nodes.hpp"
#include "yfw/native_request.hpp"
#include "yfw/node.hpp"
#include "yfw/writer.hpp"

namespace yfw {
namespace {

// A note without the line of a text that nobody sees. What stands before a line is the file's name.
std::string without_line(const std::string &note, const std::string &file) {
  const std::string before = file.empty() ? "line " : file + ":";
  size_t end = before.size();
  while (end < note.size() && std::isdigit(static_cast<unsigned char>(note[end])) != 0) {
    ++end;
  }
  if (!note.starts_with(before) || end == before.size() || note.substr(end, 2) != ": ") {
    return note;
  }
  return (file.empty() ? "" : file + ": ") + note.substr(end + 2);
}

std::string as_xml(const data_tree &tree) {
  std::ostringstream text;
  write_xml(text, tree, {.wrappers = {{"data", netconf_ns}}});
  return text.str();
}

// Names and values select what the device need not know of: the answer is filtered by them.
bool is_settled_by_filter(const std::string &note) {
  return note.ends_with(note_of_key) || note.ends_with(note_of_content_match);
}

// Reads of the keys of the native lists that stand for a list, where a client asks for its keys and maybe nothing else.
class key_reads {
 public:
  key_reads(const manifest &description, const schema &modules, const client_request &client,
            std::vector<native_operation> &calls)
      : manifest_(description), modules_(modules), client_(client), calls_(calls) {}

  void add_below(const yfw_node_t &node) {
    for (const yfw_node_t &below : children(node)) {
      if (is_key(extra(below).schema) && below.value == nullptr) {
        add_for(node);
      }
      add_below(below);
    }
  }

 private:
  void add_for(const yfw_node_t &entry) {
    const std::string high = path(extra(entry).schema);
    for (const list_pair &pair : manifest_.lists) {
      const lysc_node *low = pair.high == high ? manifest_node(manifest_, pair.low, modules_) : nullptr;
      if (low != nullptr && (is_config(low) || client_.operation == client_operation::get)) {
        add_call(modules_.child(low, ns(low), pair.low_key), entry);
      }
    }
  }

  void add_call(const lysc_node *key, const yfw_node_t &cause) {
    native_operation call{operation_kind::read, {}, std::nullopt, YFW_OPERATION_MERGE, &cause};
    for (const lysc_node *node = key; node != nullptr; node = parent(node)) {
      call.steps.insert(call.steps.begin(), {node, {}});
    }
    calls_.push_back(std::move(call));
  }

  const manifest &manifest_;
  const schema &modules_;
  const client_request &client_;
  std::vector<native_operation> &calls_;
};

}  // namespace

client_error without_line(const client_error &fault) {
  return {place{fault.where().file, 0, fault.where().path}, fault.text(), fault.tag(), fault.bad_element()};
}

reply engine::get(const device &native, document &request, const client_request &client, content wanted) const {
  if (client.operation == client_operation::get_config) {
    wanted = content::config;
  }
  native_request asked = translate_request(request, client, mapping_, log_);
  key_reads keys(mapping_.description(), native.modules(), client, asked.calls);
  for (const yfw_node_t *node : client.data) {
    keys.add_below(*node);
  }
  std::erase_if(asked.notes, is_settled_by_filter);
  if (!client.source.empty() && client.source != "running") {
    asked.notes.push_back(request.file() + ": source " + in_quotes(client.source) +
                          ": the device has one datastore, 'running', which is read");
  }
  document selected = document::read(as_xml(native.select(asked.calls)), native.file(), native.modules());
  try {
    reply translated = translate_reply(selected, mapping_, {.wanted = wanted}, log_);
    for (const std::string &note : translated.notes) {
      asked.notes.push_back(without_line(note, native.file()));
    }
    return {client.everything ? selected_content(translated.data, wanted)
                              : filtered(translated.data, request, client.data, wanted),
            std::move(asked.notes)};
  } catch (const error &fault) {
    // The path is the device's, where an error's place is the client's.
    throw client_error({native.file(), 0, {}}, fault.where().path + ": " + fault.text(), error_tag::operation_failed);
  }
}

reply engine::find(const device &native, std::string_view xpath, client_operation operation, content wanted) const {
  read_xpath expression =
      read_expression(xpath, native.modules(), client_nodes(mapping_.description(), native.modules()));
  std::vector<path_step> &steps = expression.steps;
  if (steps.size() > 1 && is_key(steps.back().node)) {
    steps[steps.size() - 2].keys.clear();  // with a key's value in it, the filter would select the whole entry
  }
  document request = request_for(steps, native.modules());
  client_request client = bare_request(request, operation);
  client.everything = steps.empty();
  try {
    reply answer = get(native, request, client, wanted);
    reply result{data_tree(native.modules()), {}};
    tree_selection selected(result.data, content::all);
    for (const data_node *node : selected_nodes(answer.data, expression.qualified)) {
      selected.add_subtree(*node);
    }
    for (const std::string &note : answer.notes) {
      result.notes.push_back(without_line(note, ""));
    }
    return result;
  } catch (const client_error &fault) {
    throw without_line(fault);
  }
}

}  // namespace yfw
