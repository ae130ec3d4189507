#pragma once

#include <functional>

#include "host/dg/node.h"

namespace host::builtins {

/// Who else is told when `duplicate` copies nodes; a service of the session.
struct DuplicateHooks {
  std::function<void()> before, after;  ///< once a command; not `after` when it fails
  /// A copy has the original's values; what is not kept in attributes can be brought along.
  std::function<void(dg::Node& original, dg::Node& copy)> copied;
};

}  // namespace host::builtins
