#pragma once

#include <array>
#include <optional>

#include "host/math/vec.h"

namespace host::math {

/// A 4x4 matrix in row-vector convention: a point is a row, p' = p * M; the translation stands in
/// row 3.
struct Matrix4 {
  double m[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};

  [[nodiscard]] double* operator[](int row) { return m[row]; }
  [[nodiscard]] const double* operator[](int row) const { return m[row]; }
  friend bool operator==(const Matrix4&, const Matrix4&) = default;

  [[nodiscard]] static Matrix4 translation(const Vec3& t);
  [[nodiscard]] static Matrix4 scaling(const Vec3& s);
};

[[nodiscard]] Matrix4 operator*(const Matrix4& a, const Matrix4& b);
[[nodiscard]] Matrix4 transpose(const Matrix4& a);
[[nodiscard]] double determinant(const Matrix4& a);

/// Inverts `a`; nothing when it is singular (a zero scale).
[[nodiscard]] std::optional<Matrix4> inverse(const Matrix4& a);

/// Transforms a point (w = 1), dividing by w when the matrix is projective.
[[nodiscard]] Vec3 transformPoint(const Vec3& p, const Matrix4& a);
/// Transforms a direction (w = 0).
[[nodiscard]] Vec3 transformVector(const Vec3& v, const Matrix4& a);
/// Transforms a surface normal by the inverse transpose; not normalised. A singular matrix uses its
/// cofactors.
[[nodiscard]] Vec3 transformNormal(const Vec3& n, const Matrix4& a);

[[nodiscard]] bool isIdentity(const Matrix4& a);
/// Whether row 3 is the only thing that sets it apart from a linear map, i.e. column 3 is
/// (0,0,0,1).
[[nodiscard]] bool isAffine(const Matrix4& a);

}  // namespace host::math
