// Replaces what identifies a network in a capture: keys of list entries, MAC and IP addresses.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "yfw.h"

namespace yfw {

// The same text always gets the same replacement, of the same form: a MAC address remains one in its notation, of
// another text capitals, small letters, digits and marks remain at their places. Keys that are numbers, and those that
// the modules name (enumerations, identities), stay as they are: they control the mapping and identify nothing.
class anonymiser {
 public:
  // Remembers the keys in a tree, those of nodes that the schema has as keys.
  void learn_keys(const yfw_node_t &tree);

  std::string replaced(std::string_view text);

 private:
  void learn(const std::string &key);
  const std::pair<const std::string, std::string> *key_at(std::string_view text, size_t at) const;
  std::string without_addresses(std::string_view text);
  std::string replaced_address(std::string_view word);
  std::string new_mac(std::string_view mac);
  std::string new_ip(std::string_view ip, bool is_v6);

  std::map<std::string, std::string, std::less<>> keys_;
  std::set<size_t> lengths_;  // of the keys
  std::set<std::string, std::less<>> replacements_;
  std::map<std::string, std::string, std::less<>> macs_;  // twelve digits to twelve digits
  std::map<std::string, std::string, std::less<>> ips_;
};

}  // namespace yfw
