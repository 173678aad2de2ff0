#include "schema.hpp"

#include "libyang_error.hpp"

#include <array>

namespace ymapgen {
namespace {

constexpr unsigned data_nodes = LYS_CONTAINER | LYS_LIST | LYS_LEAF | LYS_LEAFLIST | LYS_ANYDATA;

// Data nodes below `parent`, or at the top of `module` when it is null. Operations and notifications are left out.
std::vector<const lysc_node *> nodes_below(const lysc_node *parent, const lysc_module *module) {
  std::vector<const lysc_node *> nodes;
  const lysc_node *next = nullptr;
  while ((next = lys_getnext(next, parent, module, 0)) != nullptr) {
    if ((next->nodetype & data_nodes) != 0) {
      nodes.push_back(next);
    }
  }
  return nodes;
}

std::string last_message(const ly_ctx *context) {
  const ly_err_item *item = ly_err_first(context);
  std::string text = item != nullptr ? item->msg : "no reason given";
  const std::string location = item != nullptr ? ymap::libyang_error_location(*item) : "";
  return location.empty() ? text : text + " " + location;
}

}  // namespace

schema::schema(const std::vector<std::string> &folders) {
  ly_log_options(LY_LOSTORE);
  ly_ctx *context = nullptr;
  if (ly_ctx_new(nullptr, LY_CTX_DISABLE_SEARCHDIR_CWD | LY_CTX_NO_YANGLIBRARY, &context) != LY_SUCCESS) {
    throw error("libyang does not start");
  }
  context_.reset(context);
  for (const std::string &folder : folders) {
    const LY_ERR result = ly_ctx_set_searchdir(context, folder.c_str());
    if (result != LY_SUCCESS && result != LY_EEXIST) {
      throw error("cannot read folder '" + folder + "'");
    }
  }
}

const lys_module *schema::load(const std::string &name, const place &at) {
  std::array<const char *, 2> all_features{"*", nullptr};
  ly_err_clean(context_.get(), nullptr);
  const lys_module *module = ly_ctx_load_module(context_.get(), name.c_str(), nullptr, all_features.data());
  if (module == nullptr) {
    throw error(at, "cannot load module '" + name + "': " + last_message(context_.get()));
  }
  return module;
}

std::vector<const lysc_node *> schema::top_nodes() const {
  std::vector<const lysc_node *> nodes;
  std::uint32_t index = 0;
  while (const lys_module *module = ly_ctx_get_module_iter(context_.get(), &index)) {
    if (module->compiled != nullptr) {
      const std::vector<const lysc_node *> more = nodes_below(nullptr, module->compiled);
      nodes.insert(nodes.end(), more.begin(), more.end());
    }
  }
  return nodes;
}

std::vector<const lysc_node *> children_of(const lysc_node *parent) {
  return nodes_below(parent, nullptr);
}

std::string path_of(const lysc_node *node) {
  std::string path;
  for (; node != nullptr; node = lysc_data_parent(node)) {
    path.insert(0, std::string("/") + node->name);
  }
  return path.empty() ? "/" : path;
}

}  // namespace ymapgen
