#pragma once

#include <algorithm>
#include <cmath>

#include "host/mesh/mesh.h"

namespace host::ops {

/// The colour of a face's stretch as faceStretch() gives it: light where the map is true to the
/// surface, blue where it squeezes the face, red where it stretches it, in full colour by a factor
/// of two.
[[nodiscard]] inline mesh::Color4f stretchColor(double stretch) {
  const auto amount = static_cast<float>(std::clamp(std::abs(stretch), 0.0, 1.0));
  const float rest = 0.93f * (1 - amount);
  if (stretch < 0) return {rest + 0.10f * amount, rest + 0.30f * amount, rest + 0.95f * amount, 1};
  return {rest + 0.95f * amount, rest + 0.15f * amount, rest + 0.10f * amount, 1};
}

}  // namespace host::ops
