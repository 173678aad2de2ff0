// Which of a client's data is wanted.
#pragma once

namespace yfw {

// The `content` query parameter of RESTCONF (RFC 8040, section 4.8.1).
enum class content { all, config, nonconfig };

}  // namespace yfw
