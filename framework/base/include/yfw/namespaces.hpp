// XML namespaces of the protocols' own elements.
#pragma once

namespace yfw {

inline constexpr const char *netconf_ns = "urn:ietf:params:xml:ns:netconf:base:1.0";     // RFC 6241
inline constexpr const char *restconf_ns = "urn:ietf:params:xml:ns:yang:ietf-restconf";  // RFC 8040

}  // namespace yfw
