// What an XPath expression names in the modules.
#include <algorithm>
#include <iterator>
#include <set>

#include "yfw/internal/xpath_tokens.hpp"
#include "yfw/query.hpp"

namespace yfw {
namespace {

using nodes = std::vector<const lysc_node *>;  // null stands for the root

class resolver {
 public:
  resolver(std::string_view text, const schema &modules, const client_node_test &is_clients)
      : text_(text),
        modules_(modules),
        is_clients_test_(is_clients),
        tokens_(xpath_tokens(text)),
        single_(tokens_.size()) {
    if (tokens_.size() == 2 && tokens_.front().kind == xpath_kind::slash) {
      tokens_.insert(tokens_.begin() + 1, {xpath_kind::star, "*"});  // the root is not a data node; all below it are
      single_.resize(tokens_.size());
    }
  }

  read_xpath run() {
    if (tokens_.front().kind != xpath_kind::slash && tokens_.front().kind != xpath_kind::slashes) {
      fail("is not an absolute path, expected '/' at the beginning", error_tag::invalid_value);
    }
    for (at_ = 0; tokens_[at_].kind != xpath_kind::end; ++at_) {
      resolve(tokens_[at_]);
    }
    read_plain_steps();
    return std::move(result_);
  }

 private:
  [[noreturn]] void fail(const std::string &why, error_tag tag, const std::string &element = {}) const {
    throw client_error({}, in_quotes(text_) + " " + why, tag, element);
  }

  void emit(std::string_view text) {
    result_.qualified.append(text);
  }

  bool continues_path() const {
    return at_ > 0 && (tokens_[at_ - 1].kind == xpath_kind::slash || tokens_[at_ - 1].kind == xpath_kind::slashes);
  }

  // Whether a slash stands behind a step and not at the beginning of a path.
  bool follows_step() const {
    constexpr xpath_kind steps[] = {xpath_kind::name, xpath_kind::star,          xpath_kind::dot,
                                    xpath_kind::dots, xpath_kind::close_bracket, xpath_kind::close};
    return at_ > 0 && std::ranges::count(steps, tokens_[at_ - 1].kind) > 0;
  }

  nodes start() const {
    return continues_path() ? current_ : outer_.empty() ? nodes{nullptr} : outer_.back();
  }

  void resolve(xpath_token &token) {
    switch (token.kind) {
      case xpath_kind::slash:
      case xpath_kind::slashes:
        begin_step(token);
        break;
      case xpath_kind::name:
        step_to_name(token);
        return;
      case xpath_kind::star:
        current_ = children_of(start());
        break;
      case xpath_kind::dot:
        current_ = start();
        break;
      case xpath_kind::dots:
        current_ = parents_of(start());
        leaves_subtree_ = true;
        break;
      case xpath_kind::open_bracket:
        outer_.push_back(current_);
        break;
      case xpath_kind::close_bracket:
        end_predicate();
        break;
      case xpath_kind::literal:
        emit_literal(token.text);
        return;
      case xpath_kind::function:
        emit(token.prefix.empty() ? "" : token.prefix + ":");
        break;
      case xpath_kind::sign:
        leaves_subtree_ = leaves_subtree_ || token.text == "|";
        emit(" " + token.text + " ");
        return;
      default:
        break;
    }
    emit(token.text);
  }

  void begin_step(const xpath_token &token) {
    if (!follows_step()) {
      leaves_subtree_ = leaves_subtree_ || !outer_.empty();
      current_ = {nullptr};
    }
    if (token.kind == xpath_kind::slashes) {
      current_ = with_all_below(current_);
    }
  }

  void end_predicate() {
    if (outer_.empty()) {
      fail("has ']' without '['", error_tag::invalid_value);
    }
    current_ = outer_.back();
    outer_.pop_back();
  }

  nodes children_of(const nodes &parents) const {
    nodes found;
    for (const lysc_node *parent : parents) {
      const auto &below = modules_.children(parent);
      found.insert(found.end(), below.begin(), below.end());
    }
    return found;
  }

  static nodes parents_of(const nodes &from) {
    std::set<const lysc_node *> found;
    for (const lysc_node *node : from) {
      found.insert(node != nullptr ? parent(node) : nullptr);
    }
    return {found.begin(), found.end()};
  }

  nodes with_all_below(const nodes &from) const {
    nodes all = from;
    for (size_t i = 0; i < all.size(); ++i) {
      const auto &below = modules_.children(all[i]);
      std::copy_if(below.begin(), below.end(), std::back_inserter(all),
                   [&](const lysc_node *node) { return all[i] != nullptr || is_clients(node); });
    }
    return all;
  }

  bool is_clients(const lysc_node *node) const {
    return !is_clients_test_ || is_clients_test_(node);
  }

  void step_to_name(const xpath_token &token) {
    const nodes from = start();
    nodes found = children_of(from);
    std::erase_if(found,
                  [&](const lysc_node *node) { return name(node) != token.text || !has_prefix(node, token.prefix); });
    if (found.empty()) {
      unknown_name(token, from);
    }
    const auto others = [&] {
      return std::ranges::find_if(found, [&](auto *node) { return module_name(node) != module_name(found.front()); });
    };
    if (others() != found.end() && std::ranges::any_of(found, [&](auto *node) { return is_clients(node); })) {
      std::erase_if(found, [&](const lysc_node *node) { return !is_clients(node); });
    }
    const std::string_view module = module_name(found.front());
    if (const auto other = others(); other != found.end()) {
      fail("is ambiguous, expected '" + std::string(module) + ":" + token.text + "' or '" +
               std::string(module_name(*other)) + ":" + token.text + "'",
           error_tag::invalid_value);
    }
    emit(module);
    emit(":" + token.text);
    single_[at_] = found.size() == 1 ? found.front() : nullptr;
    current_ = std::move(found);
  }

  bool has_prefix(const lysc_node *node, std::string_view prefix) const {
    return prefix.empty() || prefix == module_name(node) || prefix == module_prefix(node);
  }

  [[noreturn]] void unknown_name(const xpath_token &token, const nodes &from) const {
    std::string written = in_quotes((token.prefix.empty() ? "" : token.prefix + ":") + token.text);
    written += from.size() == 1 ? "" : " in " + in_quotes(text_);
    const std::string where = from.size() == 1 ? path(from.front()) + "/" + token.text : "";
    throw client_error({"", 0, where}, modules_.unknown_name(from, token.text, written), error_tag::unknown_element,
                       token.text);
  }

  // libyang compares identities with the name of their module.
  void emit_literal(const std::string &value) {
    const bool is_compared = at_ > 1 && tokens_[at_ - 1].kind == xpath_kind::sign && single_[at_ - 2] != nullptr;
    const lysc_node *leaf = is_compared ? single_[at_ - 2] : nullptr;
    const std::string_view module = leaf != nullptr ? modules_.identity_module(leaf, value) : std::string_view();
    emit(key_literal((module.empty() ? "" : std::string(module) + ":") + value));
  }

  // "/name", and "[name='x']" for keys of a list, as long as nothing else comes.
  void read_plain_steps() {
    size_t at = 0;
    while (tokens_[at].kind == xpath_kind::slash && single_.size() > at + 1 && single_[at + 1] != nullptr) {
      result_.steps.push_back({single_[at + 1], {}});
      at += 2;
      while (is_key_predicate(at)) {
        result_.steps.back().keys.emplace_back(name(single_[at + 1]), tokens_[at + 3].text);
        at += 5;
      }
      if (tokens_[at].kind != xpath_kind::slash) {
        break;
      }
    }
    if (leaves_subtree_ && !result_.steps.empty()) {
      result_.steps.resize(1);
      result_.steps.front().keys.clear();
    }
  }

  bool is_key_predicate(size_t at) const {
    return at + 4 < tokens_.size() && tokens_[at].kind == xpath_kind::open_bracket && is_key(single_[at + 1]) &&
           parent(single_[at + 1]) == result_.steps.back().node && tokens_[at + 2].text == "=" &&
           tokens_[at + 2].kind == xpath_kind::sign && tokens_[at + 3].kind == xpath_kind::literal &&
           tokens_[at + 4].kind == xpath_kind::close_bracket;
  }

  std::string_view text_;
  const schema &modules_;
  const client_node_test &is_clients_test_;
  std::vector<xpath_token> tokens_;
  nodes single_;  // of each token the one node that it names, or null
  size_t at_ = 0;
  nodes current_;             // where the path that is read has come to
  std::vector<nodes> outer_;  // where the predicates around begin
  bool leaves_subtree_ = false;
  read_xpath result_;
};

}  // namespace

read_xpath read_expression(std::string_view xpath, const schema &modules, const client_node_test &is_clients) {
  return resolver(xpath, modules, is_clients).run();
}

}  // namespace yfw
