#include "host/math/matrix4.h"

#include <cmath>

namespace host::math {

namespace {

/// The 2x2 minors of rows 0-1 (s) and rows 2-3 (c), from which determinant and adjugate follow.
struct Minors {
  double s[6], c[6];
  explicit Minors(const Matrix4& a)
      : s{a[0][0] * a[1][1] - a[1][0] * a[0][1], a[0][0] * a[1][2] - a[1][0] * a[0][2],
          a[0][0] * a[1][3] - a[1][0] * a[0][3], a[0][1] * a[1][2] - a[1][1] * a[0][2],
          a[0][1] * a[1][3] - a[1][1] * a[0][3], a[0][2] * a[1][3] - a[1][2] * a[0][3]},
        c{a[2][0] * a[3][1] - a[3][0] * a[2][1], a[2][0] * a[3][2] - a[3][0] * a[2][2],
          a[2][0] * a[3][3] - a[3][0] * a[2][3], a[2][1] * a[3][2] - a[3][1] * a[2][2],
          a[2][1] * a[3][3] - a[3][1] * a[2][3], a[2][2] * a[3][3] - a[3][2] * a[2][3]} {}
  [[nodiscard]] double determinant() const {
    return s[0] * c[5] - s[1] * c[4] + s[2] * c[3] + s[3] * c[2] - s[4] * c[1] + s[5] * c[0];
  }
};

Vec3 axisRow(const Matrix4& a, int row) {
  return {a[row][0], a[row][1], a[row][2]};
}

/// The product of the rows' lengths: what the determinant would be if they were perpendicular.
/// Against it, and not against 1, a determinant counts as zero: a uniform scale of 1e-6 is a legal
/// transform.
double rowProduct(const Matrix4& a) {
  double product = 1;
  for (int i = 0; i < 4; ++i)
    product *= std::hypot(std::hypot(a[i][0], a[i][1]), std::hypot(a[i][2], a[i][3]));
  return product;
}

}  // namespace

Matrix4 Matrix4::translation(const Vec3& t) {
  Matrix4 r;
  r[3][0] = t.x;
  r[3][1] = t.y;
  r[3][2] = t.z;
  return r;
}

Matrix4 Matrix4::scaling(const Vec3& s) {
  Matrix4 r;
  for (int i = 0; i < 3; ++i) r[i][i] = s[i];
  return r;
}

Matrix4 operator*(const Matrix4& a, const Matrix4& b) {
  Matrix4 r;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j)
      r[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j] + a[i][3] * b[3][j];
  return r;
}

Matrix4 transpose(const Matrix4& a) {
  Matrix4 r;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) r[i][j] = a[j][i];
  return r;
}

double determinant(const Matrix4& a) {
  return Minors(a).determinant();
}

std::optional<Matrix4> inverse(const Matrix4& a) {
  const Minors k(a);
  const double det = k.determinant();
  if (!std::isfinite(det) || !(std::abs(det) > 1e-16 * rowProduct(a))) return {};
  const double f = 1.0 / det;
  const double *s = k.s, *c = k.c;
  Matrix4 r;
  r[0][0] = (a[1][1] * c[5] - a[1][2] * c[4] + a[1][3] * c[3]) * f;
  r[0][1] = (-a[0][1] * c[5] + a[0][2] * c[4] - a[0][3] * c[3]) * f;
  r[0][2] = (a[3][1] * s[5] - a[3][2] * s[4] + a[3][3] * s[3]) * f;
  r[0][3] = (-a[2][1] * s[5] + a[2][2] * s[4] - a[2][3] * s[3]) * f;
  r[1][0] = (-a[1][0] * c[5] + a[1][2] * c[2] - a[1][3] * c[1]) * f;
  r[1][1] = (a[0][0] * c[5] - a[0][2] * c[2] + a[0][3] * c[1]) * f;
  r[1][2] = (-a[3][0] * s[5] + a[3][2] * s[2] - a[3][3] * s[1]) * f;
  r[1][3] = (a[2][0] * s[5] - a[2][2] * s[2] + a[2][3] * s[1]) * f;
  r[2][0] = (a[1][0] * c[4] - a[1][1] * c[2] + a[1][3] * c[0]) * f;
  r[2][1] = (-a[0][0] * c[4] + a[0][1] * c[2] - a[0][3] * c[0]) * f;
  r[2][2] = (a[3][0] * s[4] - a[3][1] * s[2] + a[3][3] * s[0]) * f;
  r[2][3] = (-a[2][0] * s[4] + a[2][1] * s[2] - a[2][3] * s[0]) * f;
  r[3][0] = (-a[1][0] * c[3] + a[1][1] * c[1] - a[1][2] * c[0]) * f;
  r[3][1] = (a[0][0] * c[3] - a[0][1] * c[1] + a[0][2] * c[0]) * f;
  r[3][2] = (-a[3][0] * s[3] + a[3][1] * s[1] - a[3][2] * s[0]) * f;
  r[3][3] = (a[2][0] * s[3] - a[2][1] * s[1] + a[2][2] * s[0]) * f;
  return r;
}

Vec3 transformPoint(const Vec3& p, const Matrix4& a) {
  const Vec3 q{p.x * a[0][0] + p.y * a[1][0] + p.z * a[2][0] + a[3][0],
               p.x * a[0][1] + p.y * a[1][1] + p.z * a[2][1] + a[3][1],
               p.x * a[0][2] + p.y * a[1][2] + p.z * a[2][2] + a[3][2]};
  const double w = p.x * a[0][3] + p.y * a[1][3] + p.z * a[2][3] + a[3][3];
  return w == 1.0 || w == 0.0 ? q : Vec3{q.x / w, q.y / w, q.z / w};
}

Vec3 transformVector(const Vec3& v, const Matrix4& a) {
  return {v.x * a[0][0] + v.y * a[1][0] + v.z * a[2][0],
          v.x * a[0][1] + v.y * a[1][1] + v.z * a[2][1],
          v.x * a[0][2] + v.y * a[1][2] + v.z * a[2][2]};
}

Vec3 transformNormal(const Vec3& n, const Matrix4& a) {
  // The cofactor matrix is det * inverse transpose: defined for singular matrices too. The sign of
  // the determinant keeps the inverse transpose's direction under mirroring.
  const Vec3 x = axisRow(a, 0), y = axisRow(a, 1), z = axisRow(a, 2);
  const Vec3 yz = cross(y, z), zx = cross(z, x), xy = cross(x, y);
  const Vec3 r = yz * n.x + zx * n.y + xy * n.z;
  const double det = dot(x, yz);
  return det != 0 ? r * (1.0 / det) : r;
}

bool isIdentity(const Matrix4& a) {
  return a == Matrix4{};
}

bool isAffine(const Matrix4& a) {
  return a[0][3] == 0 && a[1][3] == 0 && a[2][3] == 0 && a[3][3] == 1;
}

}  // namespace host::math
