#pragma once

#include "host/math/euler.h"
#include "host/math/matrix4.h"

namespace host::math {

/// What a transform node stores. Angles in radians, distances in cm.
struct TransformComponents {
  Vec3 translate;
  Vec3 rotate;
  RotateOrder rotateOrder = RotateOrder::XYZ;
  Vec3 scale{1, 1, 1};
  Vec3 shear;  ///< xy, xz, yz
  Vec3 rotatePivot;
  Vec3 rotatePivotTranslate;
  Vec3 scalePivot;
  Vec3 scalePivotTranslate;
  Vec3 rotateAxis;  ///< an XYZ rotation applied before `rotate`
  friend bool operator==(const TransformComponents&, const TransformComponents&) = default;
};

/// Builds the local matrix. Row vectors meet, in this order: to the scale pivot, scale, shear,
/// back, scale pivot translate, to the rotate pivot, rotate axis, rotate, back, rotate pivot
/// translate, translate.
[[nodiscard]] Matrix4 toMatrix(const TransformComponents& components);

/// The shear part: x' = x + xy y + xz z, y' = y + yz z.
[[nodiscard]] Matrix4 shearMatrix(const Vec3& shear);

/// Takes an affine matrix apart. Rotate order, rotate axis, pivots and pivot translations stay as
/// they are in `keep`; translate, rotate, scale and shear are found so that toMatrix gives the
/// matrix back. A mirroring matrix gets three negative scales; a zero scale leaves the free
/// directions of the rotation to us.
[[nodiscard]] TransformComponents decompose(const Matrix4& matrix,
                                            const TransformComponents& keep = {});

/// Moves the rotate pivot without moving anything: the pivot translation takes up the difference.
[[nodiscard]] TransformComponents withRotatePivot(const TransformComponents& components,
                                                  const Vec3& pivot);
/// The same for the scale pivot.
[[nodiscard]] TransformComponents withScalePivot(const TransformComponents& components,
                                                 const Vec3& pivot);

}  // namespace host::math
