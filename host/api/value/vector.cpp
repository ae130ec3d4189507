#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

#include <cmath>

#include "host/api/value/convert.h"

using host::api::mathOf;
using host::api::vectorOf;
namespace math = host::math;

const MVector MVector::zero(0.0, 0.0, 0.0);
const MVector MVector::one(1.0, 1.0, 1.0);
const MVector MVector::xAxis(1.0, 0.0, 0.0);
const MVector MVector::yAxis(0.0, 1.0, 0.0);
const MVector MVector::zAxis(0.0, 0.0, 1.0);
const MVector MVector::xNegAxis(-1.0, 0.0, 0.0);
const MVector MVector::yNegAxis(0.0, -1.0, 0.0);
const MVector MVector::zNegAxis(0.0, 0.0, -1.0);

MVector::MVector(const MFloatPoint& p) : MVector(MPoint(p)) {}
MVector::MVector(const MPoint& p) : MVector(p - MPoint::origin) {}

MStatus MVector::get(double dest[3]) const {
  dest[0] = x;
  dest[1] = y;
  dest[2] = z;
  return MStatus::kSuccess;
}

MStatus MVector::get(float dest[3]) const {
  for (unsigned int i = 0; i < 3; ++i) dest[i] = static_cast<float>((*this)[i]);
  return MStatus::kSuccess;
}

MVector MVector::operator*(const MMatrix& m) const {
  return vectorOf(math::transformVector(mathOf(*this), mathOf(m)));
}

MVector operator*(const MMatrix& m, const MVector& v) {
  return v * m.transpose();
}

MVector MVector::rotateBy(double qx, double qy, double qz, double qw) const {
  return rotateBy(MQuaternion(qx, qy, qz, qw));
}

MVector MVector::rotateBy(const double rotXYZ[3],
                          MTransformationMatrix::RotationOrder order) const {
  if (order <= MTransformationMatrix::kInvalid || order >= MTransformationMatrix::kLast)
    return *this;
  return rotateBy(MEulerRotation(rotXYZ, static_cast<MEulerRotation::RotationOrder>(order - 1)));
}

MVector MVector::rotateBy(Axis axis, double angle) const {
  if (axis == kWaxis) return *this;
  math::Vec3 direction;
  direction[axis] = 1.0;
  return vectorOf(math::rotate(mathOf(*this), math::axisAngle(direction, angle)));
}

MVector MVector::rotateBy(const MQuaternion& q) const {
  return vectorOf(math::rotate(mathOf(*this), math::normalized(mathOf(q))));
}

MVector MVector::rotateBy(const MEulerRotation& e) const {
  return vectorOf(math::transformVector(
      mathOf(*this), math::eulerToMatrix(host::api::anglesOf(e), mathOf(e.order))));
}

MQuaternion MVector::rotateTo(const MVector& v) const {
  return host::api::quaternionOf(math::rotationBetween(mathOf(*this), mathOf(v)));
}

double MVector::length() const {
  return math::length(mathOf(*this));
}

MVector MVector::normal() const {
  return vectorOf(math::normalized(mathOf(*this)));
}

MStatus MVector::normalize() {
  const double size = length();
  if (!(size > 0.0)) return MStatus::kFailure;
  *this = normal();
  return MStatus::kSuccess;
}

double MVector::angle(const MVector& other) const {
  // Through both products: the arc cosine alone loses half the digits of small angles.
  return std::atan2((*this ^ other).length(), *this * other);
}

bool MVector::isEquivalent(const MVector& other, double tolerance) const {
  const MVector d = *this - other;
  return std::abs(d.x) <= tolerance && std::abs(d.y) <= tolerance && std::abs(d.z) <= tolerance;
}

bool MVector::isParallel(const MVector& other, double tolerance) const {
  const double sizes = length() * other.length();
  return sizes == 0.0 || std::abs(*this * other) >= sizes * (1.0 - tolerance);
}

MVector MVector::transformAsNormal(const MMatrix& matrix) const {
  return vectorOf(math::transformNormal(mathOf(*this), mathOf(matrix)));
}

std::ostream& operator<<(std::ostream& os, const MVector& v) {
  return os << '[' << v.x << ", " << v.y << ", " << v.z << ']';
}
