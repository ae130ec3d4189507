#pragma once

#include <array>

#include "host/base/ids.h"
#include "host/math/vec.h"

namespace host::spatial {

/// All that a question about one triangle needs, in one cache line: candidates are met in an order
/// in which nothing else would be at hand.
struct alignas(64) Triangle {
  math::Vec3f a, b, c;
  FaceId face = kNone;
  std::array<CornerId, 3> corners{kNone, kNone, kNone};
  Index inFace = 0;  ///< which of the face's triangles
  bool isFinite = true;
};

}  // namespace host::spatial
