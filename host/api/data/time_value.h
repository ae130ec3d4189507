#pragma once

#include <maya/MTime.h>

namespace host::api {

/// Returns stored seconds in the unit that the scene counts time in: plug-ins read a time's value
/// as a frame.
[[nodiscard]] inline MTime timeOf(double seconds) {
  const MTime::Unit unit = MTime::uiUnit();
  return MTime(MTime(seconds, MTime::kSeconds).as(unit), unit);
}

}  // namespace host::api
