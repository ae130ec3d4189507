#pragma once

#include "host/base/result.h"
#include "host/dg/plug.h"

namespace host::dg {

/// Whether two plugs can be connected at all, by what their attributes are: types, arrays, and what
/// may be read, written or connected. Locks, cycles and what is connected now are not looked at.
Result<void> checkConnection(const Plug& source, const Plug& destination);

}  // namespace host::dg
