#pragma once

#include "host/dg/data.h"

namespace host::api {

/// The value as it may be stored: arrays by name that a plug-in may still write to are copied.
[[nodiscard]] dg::Value settled(dg::Value value);

}  // namespace host::api
