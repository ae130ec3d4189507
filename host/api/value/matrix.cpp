#include <maya/MMatrix.h>

#include <algorithm>
#include <cmath>

#include "host/api/value/convert.h"

using host::api::mathOf;
using host::api::matrixOf;
namespace math = host::math;

namespace {

/// The determinant of the 3 by 3 matrix that is left without one row and one column.
double minorOf(const MMatrix& m, int skippedRow, int skippedColumn) {
  double rest[3][3];
  for (int r = 0, i = 0; r < 4; ++r) {
    if (r == skippedRow) continue;
    for (int c = 0, j = 0; c < 4; ++c)
      if (c != skippedColumn) rest[i][j++] = m.matrix[r][c];
    ++i;
  }
  return rest[0][0] * (rest[1][1] * rest[2][2] - rest[1][2] * rest[2][1]) -
         rest[0][1] * (rest[1][0] * rest[2][2] - rest[1][2] * rest[2][0]) +
         rest[0][2] * (rest[1][0] * rest[2][1] - rest[1][1] * rest[2][0]);
}

template <class Operation>
MMatrix combined(const MMatrix& a, const MMatrix& b, Operation operation) {
  MMatrix out;
  std::transform(&a.matrix[0][0], &a.matrix[0][0] + 16, &b.matrix[0][0], &out.matrix[0][0],
                 operation);
  return out;
}

}  // namespace

const MMatrix MMatrix::identity;

MMatrix::MMatrix(const double m[4][4]) {
  std::copy_n(&m[0][0], 16, &matrix[0][0]);
}
MMatrix::MMatrix(const float m[4][4]) {
  std::copy_n(&m[0][0], 16, &matrix[0][0]);
}
MStatus MMatrix::get(double dest[4][4]) const {
  std::copy_n(&matrix[0][0], 16, &dest[0][0]);
  return MStatus::kSuccess;
}
MStatus MMatrix::get(float dest[4][4]) const {
  std::transform(&matrix[0][0], &matrix[0][0] + 16, &dest[0][0],
                 [](double v) { return static_cast<float>(v); });
  return MStatus::kSuccess;
}
MMatrix& MMatrix::operator+=(const MMatrix& right) {
  return *this = *this + right;
}
MMatrix MMatrix::operator+(const MMatrix& right) const {
  return combined(*this, right, [](double a, double b) { return a + b; });
}
MMatrix& MMatrix::operator-=(const MMatrix& right) {
  return *this = *this - right;
}
MMatrix MMatrix::operator-(const MMatrix& right) const {
  return combined(*this, right, [](double a, double b) { return a - b; });
}
MMatrix& MMatrix::operator*=(const MMatrix& right) {
  return *this = *this * right;
}
MMatrix MMatrix::operator*(const MMatrix& right) const {
  return matrixOf(mathOf(*this) * mathOf(right));
}
MMatrix& MMatrix::operator*=(double s) {
  return *this = *this * s;
}
MMatrix MMatrix::operator*(double s) const {
  return combined(*this, *this, [s](double a, double) { return a * s; });
}
bool MMatrix::operator==(const MMatrix& other) const {
  return mathOf(*this) == mathOf(other);
}
MMatrix& MMatrix::setToIdentity() {
  return *this = MMatrix();
}
MMatrix& MMatrix::setToProduct(const MMatrix& left, const MMatrix& right) {
  return *this = left * right;
}
MMatrix MMatrix::transpose() const {
  return matrixOf(math::transpose(mathOf(*this)));
}
MMatrix MMatrix::inverse() const {
  const auto inverted = math::inverse(mathOf(*this));
  return inverted ? matrixOf(*inverted) : MMatrix();
}
MMatrix MMatrix::adjoint() const {
  MMatrix out;
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c)
      out.matrix[r][c] = ((r + c) % 2 ? -1.0 : 1.0) * minorOf(*this, c, r);
  return out;
}
MMatrix MMatrix::homogenize() const {
  const double w = matrix[3][3];
  return w == 0.0 || w == 1.0 ? *this : *this * (1.0 / w);
}
double MMatrix::det4x4() const {
  return math::determinant(mathOf(*this));
}
double MMatrix::det3x3() const {
  return minorOf(*this, 3, 3);
}
bool MMatrix::isSingular() const {
  return !math::inverse(mathOf(*this));
}
bool MMatrix::isEquivalent(const MMatrix& other, double tolerance) const {
  return std::equal(&matrix[0][0], &matrix[0][0] + 16, &other.matrix[0][0],
                    [tolerance](double a, double b) { return std::abs(a - b) <= tolerance; });
}

std::ostream& operator<<(std::ostream& os, const MMatrix& m) {
  os << '[';
  for (int r = 0; r < 4; ++r) {
    os << (r ? ", [" : "[");
    for (int c = 0; c < 4; ++c) os << (c ? ", " : "") << m.matrix[r][c];
    os << ']';
  }
  return os << ']';
}
