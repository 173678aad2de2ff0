#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <map>

#include "libyang_error.hpp"
#include "yfw/error.hpp"
#include "yfw/internal/schema_internal.hpp"
#include "yfw/internal/schema_types.hpp"
#include "yfw/internal/text.hpp"

namespace yfw {

namespace {

namespace fs = std::filesystem;

struct module_file {
  fs::path path;
  std::string revision;  // "" when the file's name tells none
};

// The first word of a YANG text, after blanks and comments.
std::string first_word(const std::string &text) {
  size_t at = 0;
  while (at < text.size()) {
    if (is_blank(text[at])) {
      ++at;
    } else if (text.compare(at, 2, "//") == 0) {
      at = std::min(text.find('\n', at), text.size());
    } else if (text.compare(at, 2, "/*") == 0) {
      const size_t end = text.find("*/", at + 2);
      at = end == std::string::npos ? text.size() : end + 2;
    } else {
      break;
    }
  }
  const size_t end = std::min(text.find_first_of(" \t\r\n\"'{", at), text.size());
  return text.substr(at, end - at);
}

bool is_submodule(const fs::path &file) {
  std::ifstream in(file, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  if (!in) {
    throw error({file.string()}, "cannot be read");
  }
  return first_word(text) == "submodule";
}

// The newest file of each module, by the names of the files (RFC 7950, section 5.2: module@revision.yang).
std::map<std::string, module_file> module_files(const std::vector<fs::path> &directories) {
  std::map<std::string, module_file> newest;
  for (const fs::path &directory : directories) {
    std::error_code code;
    fs::directory_iterator files(directory, code);
    if (code) {
      throw error({directory.string()}, "cannot be read as a directory of YANG modules: " + code.message());
    }
    for (const fs::directory_entry &file : files) {
      if (file.path().extension() != ".yang" || file.is_directory() || is_submodule(file.path())) {
        continue;
      }
      const std::string stem = file.path().stem().string();
      const size_t at = stem.find('@');
      const std::string revision = at == std::string::npos ? "" : stem.substr(at + 1);
      module_file &best = newest[stem.substr(0, at)];
      if (best.path.empty() || revision > best.revision) {
        best = {file.path(), revision};
      }
    }
  }
  if (newest.empty()) {
    throw error({directories.empty() ? "" : directories.front().string()}, "has no YANG module (*.yang)");
  }
  return newest;
}

// The number after "Line number ", 0 when there is none.
unsigned line_in(std::string_view text) {
  constexpr std::string_view before = "ine number ";
  const size_t at = text.find(before);
  unsigned line = 0;
  for (size_t i = at + before.size(); at != text.npos && i < text.size() && std::isdigit(text[i]) != 0; ++i) {
    line = line * 10 + static_cast<unsigned>(text[i] - '0');
  }
  return line;
}

// Reports libyang's first stored error, which is the cause of the later ones. These name the module that it is in.
[[noreturn]] void throw_first_error(const ly_ctx *context, const std::map<std::string, module_file> &files,
                                    std::string module) {
  const ly_err_item *cause = ly_err_first(context);
  for (const ly_err_item *item = cause; item != nullptr; item = item->next) {
    constexpr std::string_view before = "Parsing module \"";
    const std::string_view text = item->msg != nullptr ? item->msg : "";
    if (text.starts_with(before)) {
      module = text.substr(before.size(), text.find('"', before.size()) - before.size());
      break;
    }
  }
  place where;
  const auto file = files.find(module);
  where.file = file != files.end() ? file->second.path.string() : module;
  const std::string found_at = cause != nullptr ? ymap::libyang_error_location(*cause) : "";
  where.line = line_in(found_at);
  const bool is_path = found_at.starts_with('/') || found_at.starts_with("Schema location");
  const std::string text = plain_words(cause != nullptr && cause->msg != nullptr ? cause->msg : "cannot be loaded");
  throw error(where, is_path ? text + " (" + plain_words(found_at) + ")" : text);
}

std::unique_ptr<ly_ctx, context_deleter> new_context(const std::vector<fs::path> &directories) {
  ly_ctx *context = nullptr;
  const uint16_t options = LY_CTX_NO_YANGLIBRARY | LY_CTX_DISABLE_SEARCHDIR_CWD | LY_CTX_EXPLICIT_COMPILE;
  if (ly_ctx_new(nullptr, options, &context) != LY_SUCCESS) {
    throw error("out of memory");
  }
  for (const fs::path &directory : directories) {
    ly_ctx_set_searchdir(context, directory.c_str());
  }
  return std::unique_ptr<ly_ctx, context_deleter>(context);
}

bool load_module(ly_ctx *context, const std::string &module, const module_file &file) {
  const char *revision = file.revision.empty() ? nullptr : file.revision.c_str();
  const char *all_features[] = {"*", nullptr};
  return ly_ctx_load_module(context, module.c_str(), revision, all_features) != nullptr;
}

}  // namespace

schema::schema(std::unique_ptr<parts> inside) : parts_(std::move(inside)) {}
schema::schema(schema &&) noexcept = default;
schema &schema::operator=(schema &&) noexcept = default;
schema::~schema() = default;

schema schema::load(const std::vector<fs::path> &directories) {
  const auto files = module_files(directories);
  ly_log_options(LY_LOSTORE);
  auto result = std::make_unique<parts>();
  result->context = new_context(directories);
  ly_ctx *context = result->context.get();
  for (const auto &[module, file] : files) {
    if (!load_module(context, module, file)) {
      // After others, libyang may know neither the line nor the file of the fault.
      const auto alone = new_context(directories);
      throw_first_error(load_module(alone.get(), module, file) ? context : alone.get(), files, module);
    }
    const lys_module *loaded = ly_ctx_get_module_implemented(context, module.c_str());
    result->modules.emplace_back(loaded->name);
  }
  if (ly_ctx_compile(context) != LY_SUCCESS) {
    throw_first_error(context, files, "");
  }
  result->index();
  return schema(std::move(result));
}

void schema::parts::index() {
  uint32_t i = 0;
  while (const lys_module *module = ly_ctx_get_module_iter(context.get(), &i)) {
    ns_by_module[module->name] = module->ns;
    module_by_ns[module->ns] = module->name;
  }
  children[nullptr];
  for (const std::string_view module : modules) {
    index_children(nullptr, ly_ctx_get_module_implemented(context.get(), module.data())->compiled);
  }
}

void schema::parts::index_children(const lysc_node *parent, const lysc_module *module) {
  std::vector<const lysc_node *> found;
  const lysc_node *node = nullptr;
  while ((node = lys_getnext(node, parent, module, 0)) != nullptr) {
    if ((node->nodetype & (LYS_RPC | LYS_ACTION | LYS_NOTIF)) == 0) {
      found.push_back(node);
      by_name.emplace(child_name{parent, node->name}, node);
      index_identities(type_of(node));
    }
  }
  auto &all = children[parent];
  all.insert(all.end(), found.begin(), found.end());
  for (const lysc_node *each : found) {
    index_children(each, nullptr);
  }
}

void schema::parts::index_identities(const lysc_type *type) {
  if (type != nullptr && type->basetype == LY_TYPE_IDENT) {
    if (const auto [found, is_new] = identities.try_emplace(type); is_new) {
      found->second = yfw::identities(type);
    }
  } else if (type != nullptr && type->basetype == LY_TYPE_UNION) {
    for (const lysc_type *member : members(type)) {
      index_identities(member);
    }
  }
}

}  // namespace yfw
