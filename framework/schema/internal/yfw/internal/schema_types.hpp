// libyang's compiled types, looked through references.
#pragma once

#include <libyang/libyang.h>

#include <string>
#include <vector>

namespace yfw {

// A record of libyang as what it is: all types begin alike and so do all nodes, and a field there tells the kind.
template <typename T>
const T &as(const void *record) {
  return *static_cast<const T *>(record);
}

struct set_deleter {
  void operator()(ly_set *set) const {
    ly_set_free(set, nullptr);
  }
};

// The type of a leaf or leaf-list, that of its target when it is a reference; null for other nodes.
const lysc_type *type_of(const lysc_node *leaf);

// The member types of a union, references looked through.
std::vector<const lysc_type *> members(const lysc_type *type);

// The identities that an identityref allows: those derived from all of its bases (RFC 7950, section 9.10.2), each once.
std::vector<const lysc_ident *> identities(const lysc_type *type);

// The names that a type gives to its values: enums, bits, identities, "true" and "false"; those of all members.
std::vector<std::string> value_names(const lysc_type *type);

}  // namespace yfw
