#include <algorithm>
#include <utility>

#include "presence.hpp"
#include "yfw/internal/dispatch.hpp"
#include "yfw/internal/manifest_nodes.hpp"
#include "yfw/mapping_service.hpp"
#include "yfw/native_request.hpp"
#include "yfw/node.hpp"
#include "yfw/path_document.hpp"
#include "yfw/query.hpp"

namespace yfw {
namespace {

// Names and values select what the device need not know of: the answer is filtered by them.
bool is_settled_by_filter(const note &about) {
  return about.kind == note_kind::key_read || about.kind == note_kind::content_match;
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
    const std::string client_list = path(extra(entry).schema);
    for (const list_pair &pair : manifest_.lists) {
      const lysc_node *native_list = pair.high == client_list ? manifest_node(manifest_, pair.low, modules_) : nullptr;
      if (native_list != nullptr && (is_config(native_list) || client_.operation == client_operation::get)) {
        add_read(modules_.child(native_list, ns(native_list), pair.low_key), entry);
      }
    }
  }

  void add_read(const lysc_node *key, const yfw_node_t &source_node) {
    native_operation call{operation_kind::read, {}, std::nullopt, YFW_OPERATION_MERGE, &source_node};
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

reply mapping_service::get(document &request, const client_request &client, content wanted) const {
  if (client.operation == client_operation::get_config) {
    wanted = content::config;
  }
  reply found = answer(request, client, wanted);
  found.data =
      client.everything ? selected_content(found.data, wanted) : filtered(found.data, request, client.data, wanted);
  return found;
}

// All that the device says to the request, unfiltered.
reply mapping_service::answer(document &request, const client_request &client, content wanted) const {
  native_request asked = translate_request(request, client, mapping_, log_);
  key_reads keys(mapping_.description(), device_.modules(), client, asked.calls);
  for (const yfw_node_t *node : client.data) {
    keys.add_below(*node);
  }
  std::erase_if(asked.notes, is_settled_by_filter);
  if (!client.source.empty() && client.source != "running") {
    asked.notes.push_back(
        {{request.file()},
         note_kind::datastore,
         "source " + in_quotes(client.source) + ": the device has one datastore, 'running', which is read",
         client.source});
  }
  document native = device_.read(asked.calls, datastore::running);
  try {
    reply translated = translate_reply(native, mapping_, {.wanted = wanted}, log_);
    asked.notes.insert(asked.notes.end(), translated.notes.begin(), translated.notes.end());
    return {std::move(translated.data), std::move(asked.notes)};
  } catch (const error &fault) {
    throw unreadable(device_, fault);
  }
}

reply mapping_service::find(std::string_view xpath, client_operation operation, content wanted) const {
  const schema &modules = device_.modules();
  read_xpath expression = read_expression(xpath, modules, client_nodes(mapping_.description(), modules));
  std::vector<path_step> &steps = expression.steps;
  if (steps.size() > 1 && is_key(steps.back().node)) {
    steps[steps.size() - 2].keys.clear();  // with a key's value in it, the filter would select the whole entry
  }
  document request = request_for(steps, modules);
  client_request client = bare_request(request, operation);
  client.everything = steps.empty();
  reply found = get(request, client, wanted);
  reply result{data_tree(modules), std::move(found.notes)};
  tree_selection selected(result.data, content::all);
  for (const data_node *node : selected_nodes(found.data, expression.qualified)) {
    selected.add_subtree(*node);
  }
  return result;
}

}  // namespace yfw
