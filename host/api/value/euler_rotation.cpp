#include <maya/MEulerRotation.h>
#include <maya/MMatrix.h>
#include <maya/MQuaternion.h>

#include <cmath>

#include "host/api/value/convert.h"
#include "host/math/tolerance.h"

using host::api::anglesOf;
using host::api::eulerOf;
using host::api::mathOf;
namespace math = host::math;

namespace {

double bounded(double angle) {
  return angle - 2.0 * math::kPi * std::round(angle / (2.0 * math::kPi));
}

/// The order in which the opposite rotations must follow each other to undo those of `order`.
MEulerRotation::RotationOrder reversed(MEulerRotation::RotationOrder order) {
  switch (order) {
    case MEulerRotation::kXYZ:
      return MEulerRotation::kZYX;
    case MEulerRotation::kYZX:
      return MEulerRotation::kXZY;
    case MEulerRotation::kZXY:
      return MEulerRotation::kYXZ;
    case MEulerRotation::kXZY:
      return MEulerRotation::kYZX;
    case MEulerRotation::kYXZ:
      return MEulerRotation::kZXY;
    case MEulerRotation::kZYX:
      break;
  }
  return MEulerRotation::kXYZ;
}

}  // namespace

const MEulerRotation MEulerRotation::identity;

MEulerRotation& MEulerRotation::operator=(const MMatrix& matrix) {
  setValue(matrix);
  return *this;
}
MEulerRotation& MEulerRotation::operator=(const MQuaternion& quaternion) {
  setValue(quaternion);
  return *this;
}
MStatus MEulerRotation::setValue(const MVector& v, RotationOrder o) {
  return setValue(v.x, v.y, v.z, o);
}
MStatus MEulerRotation::setValue(double xx, double yy, double zz, RotationOrder o) {
  *this = MEulerRotation(xx, yy, zz, o);
  return MStatus::kSuccess;
}
MStatus MEulerRotation::setValue(const double angles[3], RotationOrder o) {
  return setValue(angles[0], angles[1], angles[2], o);
}
MStatus MEulerRotation::setValue(const MMatrix& matrix) {
  *this = decompose(matrix, order);
  return MStatus::kSuccess;
}
MStatus MEulerRotation::setValue(const MQuaternion& quaternion) {
  *this =
      eulerOf(math::quaternionToEuler(math::normalized(mathOf(quaternion)), mathOf(order)), order);
  return MStatus::kSuccess;
}

MQuaternion MEulerRotation::asQuaternion() const {
  return host::api::quaternionOf(math::eulerToQuaternion(anglesOf(*this), mathOf(order)));
}
MMatrix MEulerRotation::asMatrix() const {
  return host::api::matrixOf(math::eulerToMatrix(anglesOf(*this), mathOf(order)));
}
MStatus MEulerRotation::get(double dest[3]) const {
  return asVector().get(dest);
}

MEulerRotation MEulerRotation::operator+(const MEulerRotation& other) const {
  return *this + other.reorder(order).asVector();
}
MEulerRotation MEulerRotation::operator+(const MVector& v) const {
  return {x + v.x, y + v.y, z + v.z, order};
}
MEulerRotation& MEulerRotation::operator+=(const MEulerRotation& other) {
  return *this = *this + other;
}
MEulerRotation& MEulerRotation::operator+=(const MVector& v) {
  return *this = *this + v;
}
MEulerRotation MEulerRotation::operator-() const {
  return {-x, -y, -z, order};
}
MEulerRotation MEulerRotation::operator-(const MEulerRotation& other) const {
  return *this + -other.reorder(order).asVector();
}
MEulerRotation& MEulerRotation::operator-=(const MEulerRotation& other) {
  return *this = *this - other;
}
MEulerRotation MEulerRotation::operator*(const MEulerRotation& other) const {
  return *this * other.asQuaternion();
}
MEulerRotation MEulerRotation::operator*(const MQuaternion& other) const {
  MEulerRotation product(*this);
  product = asQuaternion() * other;
  return product;
}
bool MEulerRotation::isEquivalent(const MEulerRotation& other, double tolerance) const {
  return order == other.order && asVector().isEquivalent(other.asVector(), tolerance);
}
bool MEulerRotation::isZero(double tolerance) const {
  return asVector().isEquivalent(MVector::zero, tolerance);
}

MEulerRotation& MEulerRotation::incrementalRotateBy(const MVector& axis, double angle) {
  return *this = (*this * MQuaternion(angle, axis)).closestSolution(*this);
}
MEulerRotation MEulerRotation::inverse() const {
  return {-x, -y, -z, reversed(order)};
}
MEulerRotation MEulerRotation::reorder(RotationOrder newOrder) const {
  return eulerOf(math::reorderEuler(anglesOf(*this), mathOf(order), mathOf(newOrder)), newOrder);
}
MEulerRotation MEulerRotation::bound() const {
  return {bounded(x), bounded(y), bounded(z), order};
}
MEulerRotation MEulerRotation::alternateSolution() const {
  const auto axes = math::axesOf(mathOf(order));
  MEulerRotation other(*this);
  for (unsigned int axis = 0; axis < 3; ++axis)
    other[axis] += (*this)[axis] > 0.0 ? -math::kPi : math::kPi;
  const auto middle = static_cast<unsigned int>(axes.second);
  other[middle] = ((*this)[middle] > 0.0 ? math::kPi : -math::kPi) - (*this)[middle];
  return other;
}
MEulerRotation MEulerRotation::closestSolution(const MEulerRotation& target) const {
  const math::Vec3 reference = anglesOf(target.reorder(order));
  return eulerOf(math::closestEuler(anglesOf(*this), mathOf(order), reference), order);
}
MEulerRotation MEulerRotation::closestCut(const MEulerRotation& target) const {
  MEulerRotation out(*this);
  for (unsigned int i = 0; i < 3; ++i) out[i] = target[i] + bounded((*this)[i] - target[i]);
  return out;
}
MEulerRotation MEulerRotation::decompose(const MMatrix& matrix, RotationOrder order) {
  return eulerOf(math::matrixToEuler(mathOf(matrix), mathOf(order)), order);
}

std::ostream& operator<<(std::ostream& os, const MEulerRotation& e) {
  static const char* const kNames[] = {"kXYZ", "kYZX", "kZXY", "kXZY", "kYXZ", "kZYX"};
  return os << '[' << e.x << ", " << e.y << ", " << e.z << ", " << kNames[e.order] << ']';
}
