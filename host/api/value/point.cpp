#include <maya/MMatrix.h>
#include <maya/MPoint.h>

#include <cmath>

#include "host/api/value/convert.h"

const MPoint MPoint::origin(0.0, 0.0, 0.0, 1.0);

MStatus MPoint::get(double dest[4]) const {
  for (unsigned int i = 0; i < 4; ++i) dest[i] = (*this)[i];
  return MStatus::kSuccess;
}

MStatus MPoint::get(float dest[4]) const {
  for (unsigned int i = 0; i < 4; ++i) dest[i] = static_cast<float>((*this)[i]);
  return MStatus::kSuccess;
}

MPoint MPoint::operator*(const MMatrix& matrix) const {
  const auto& m = matrix.matrix;
  const auto column = [&](int c) { return x * m[0][c] + y * m[1][c] + z * m[2][c] + w * m[3][c]; };
  return {column(0), column(1), column(2), column(3)};
}

MPoint operator*(const MMatrix& m, const MPoint& p) {
  return p * m.transpose();
}

MPoint& MPoint::cartesianize() {
  rationalize();
  if (w != 0.0) w = 1.0;
  return *this;
}

MPoint& MPoint::rationalize() {
  if (w != 0.0 && w != 1.0) {
    x /= w;
    y /= w;
    z /= w;
  }
  return *this;
}

MPoint& MPoint::homogenize() {
  x *= w;
  y *= w;
  z *= w;
  return *this;
}

double MPoint::distanceTo(const MPoint& other) const {
  return host::math::length(host::api::mathOf(*this - other));
}

bool MPoint::isEquivalent(const MPoint& other, double tolerance) const {
  return (*this - other).isEquivalent(MVector::zero, tolerance);
}

std::ostream& operator<<(std::ostream& os, const MPoint& p) {
  return os << '[' << p.x << ", " << p.y << ", " << p.z << ", " << p.w << ']';
}
