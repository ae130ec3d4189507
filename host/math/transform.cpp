#include "host/math/transform.h"

#include <algorithm>

#include "host/math/frame.h"

namespace host::math {

namespace {

Vec3 row(const Matrix4& m, int i) {
  return {m[i][0], m[i][1], m[i][2]};
}

Matrix4 scaleShear(const TransformComponents& c) {
  return Matrix4::scaling(c.scale) * shearMatrix(c.shear);
}

Matrix4 rotation(const TransformComponents& c) {
  return eulerToMatrix(c.rotateAxis) * eulerToMatrix(c.rotate, c.rotateOrder);
}

/// Splits the linear part's rows by Gram-Schmidt: row 0 = sx r0, row 1 = sy (xy r0 + r1),
/// row 2 = sz (xz r0 + yz r1 + r2), with r0 r1 r2 right-handed.
void splitLinear(const Matrix4& m, Vec3& scale, Vec3& shear, Matrix4& rotate) {
  Vec3 r0 = row(m, 0);
  scale.x = length(r0);
  const double size = std::max({scale.x, length(row(m, 1)), length(row(m, 2))});
  const double tiny = 1e-14 * size;
  Vec3 r1 = row(m, 1), r2 = row(m, 2);
  r0 = scale.x > tiny                        ? r0 / scale.x
       : length(cross(r1, r2)) > tiny * size ? normalized(cross(r1, r2))
                                             : anyPerpendicular(length(r1) > tiny ? r1 : r2);
  const double xy = dot(r1, r0);
  r1 -= r0 * xy;
  scale.y = length(r1);
  const Vec3 crossed = cross(row(m, 2), r0);
  if (scale.y > tiny) {
    r1 = r1 / scale.y;
  } else {
    scale.y = 0;
    r1 = length(crossed) > tiny ? normalized(crossed) : anyPerpendicular(r0);
  }
  const double xz = dot(r2, r0), yz = dot(r2, r1);
  const Vec3 third = cross(r0, r1);
  scale.z = dot(r2, third);
  shear = {scale.y != 0 ? xy / scale.y : 0, scale.z != 0 ? xz / scale.z : 0,
           scale.z != 0 ? yz / scale.z : 0};
  if (scale.z < 0) {
    // The axes are right-handed, so a mirroring shows in the third scale alone; sharing it with the
    // other two leaves the matrix as it is and gives the all-negative scale that people type for a
    // mirror image.
    scale.x = -scale.x;
    scale.y = -scale.y;
    shear.y = -shear.y;
    shear.z = -shear.z;
    r0 = -r0;
    r1 = -r1;
  }
  const Vec3 rows[3] = {r0, r1, third};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) rotate[i][j] = rows[i][j];
}

}  // namespace

Matrix4 shearMatrix(const Vec3& shear) {
  Matrix4 r;
  r[1][0] = shear.x;
  r[2][0] = shear.y;
  r[2][1] = shear.z;
  return r;
}

Matrix4 toMatrix(const TransformComponents& c) {
  return Matrix4::translation(-c.scalePivot) * scaleShear(c) *
         Matrix4::translation(c.scalePivot + c.scalePivotTranslate - c.rotatePivot) * rotation(c) *
         Matrix4::translation(c.rotatePivot + c.rotatePivotTranslate + c.translate);
}

TransformComponents decompose(const Matrix4& matrix, const TransformComponents& keep) {
  TransformComponents c = keep;
  Matrix4 rotate;
  splitLinear(matrix, c.scale, c.shear, rotate);
  c.rotate = matrixToEuler(transpose(eulerToMatrix(c.rotateAxis)) * rotate, c.rotateOrder);
  c.translate = {};
  c.translate = row(matrix, 3) - row(toMatrix(c), 3);
  return c;
}

TransformComponents withRotatePivot(const TransformComponents& components, const Vec3& pivot) {
  TransformComponents c = components;
  const Vec3 before = row(toMatrix(c), 3);
  c.rotatePivot = pivot;
  c.rotatePivotTranslate += before - row(toMatrix(c), 3);
  return c;
}

TransformComponents withScalePivot(const TransformComponents& components, const Vec3& pivot) {
  TransformComponents c = components;
  const Vec3 before = row(toMatrix(c), 3);
  c.scalePivot = pivot;
  // The difference appears after scaling but before rotating, so it goes through the inverse
  // rotation.
  c.scalePivotTranslate += transformVector(before - row(toMatrix(c), 3), transpose(rotation(c)));
  return c;
}

}  // namespace host::math
