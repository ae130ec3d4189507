#pragma once

#include <maya/MTransformationMatrix.h>

#include "host/math/transform.h"

namespace host::api {

/// Reads and writes an API transform as the engine's parts; lossless both ways.
struct TransformParts {
  [[nodiscard]] static math::TransformComponents of(const MTransformationMatrix& transform);
  static void set(MTransformationMatrix& transform, const math::TransformComponents& parts);
  [[nodiscard]] static MTransformationMatrix make(const math::TransformComponents& parts);
};

/// The API's rotation orders start at one, behind kInvalid.
[[nodiscard]] inline bool isValidOrder(MTransformationMatrix::RotationOrder order) {
  return order > MTransformationMatrix::kInvalid && order < MTransformationMatrix::kLast;
}
[[nodiscard]] inline math::RotateOrder mathOf(MTransformationMatrix::RotationOrder order) {
  return static_cast<math::RotateOrder>(order - MTransformationMatrix::kXYZ);
}
[[nodiscard]] inline MTransformationMatrix::RotationOrder orderOf(math::RotateOrder order) {
  return static_cast<MTransformationMatrix::RotationOrder>(static_cast<int>(order) +
                                                           MTransformationMatrix::kXYZ);
}

}  // namespace host::api
