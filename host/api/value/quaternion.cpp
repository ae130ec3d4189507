#include <maya/MEulerRotation.h>
#include <maya/MMatrix.h>
#include <maya/MQuaternion.h>

#include <cmath>

#include "host/api/value/convert.h"
#include "host/math/tolerance.h"

using host::api::mathOf;
using host::api::quaternionOf;
namespace math = host::math;

const MQuaternion MQuaternion::identity;

MQuaternion::MQuaternion(const MVector& a, const MVector& b)
    : MQuaternion(quaternionOf(math::rotationBetween(mathOf(a), mathOf(b)))) {}
MQuaternion::MQuaternion(const MVector& a, const MVector& b, double factor)
    : MQuaternion(slerp(identity, MQuaternion(a, b), factor)) {}
MQuaternion::MQuaternion(double angle, const MVector& axis)
    : MQuaternion(quaternionOf(math::axisAngle(mathOf(axis), angle))) {}
MQuaternion& MQuaternion::operator=(const MMatrix& matrix) {
  return *this = quaternionOf(math::toQuaternion(mathOf(matrix)));
}
MQuaternion& MQuaternion::operator=(const MEulerRotation& euler) {
  return *this = euler.asQuaternion();
}
MQuaternion& MQuaternion::setAxisAngle(const MVector& axis, double angle) {
  return *this = MQuaternion(angle, axis);
}
bool MQuaternion::getAxisAngle(MVector& axis, double& angle) const {
  const MVector imaginary(x, y, z);
  const double sine = imaginary.length();
  angle = 2.0 * std::atan2(sine, w);
  axis = sine > 0.0 ? imaginary / sine : MVector::zAxis;
  return sine > 0.0 || w != 0.0;
}
MQuaternion& MQuaternion::setToXAxis(double angle) {
  return setAxisAngle(MVector::xAxis, angle);
}
MQuaternion& MQuaternion::setToYAxis(double angle) {
  return setAxisAngle(MVector::yAxis, angle);
}
MQuaternion& MQuaternion::setToZAxis(double angle) {
  return setAxisAngle(MVector::zAxis, angle);
}

MMatrix MQuaternion::asMatrix() const {
  return host::api::matrixOf(math::toMatrix(math::normalized(mathOf(*this))));
}
MEulerRotation MQuaternion::asEulerRotation() const {
  MEulerRotation euler;
  euler = *this;
  return euler;
}
MStatus MQuaternion::get(double dest[4]) const {
  for (unsigned int i = 0; i < 4; ++i) dest[i] = (*this)[i];
  return MStatus::kSuccess;
}
MQuaternion MQuaternion::operator*(const MQuaternion& right) const {
  return quaternionOf(mathOf(*this) * mathOf(right));
}
bool MQuaternion::isEquivalent(const MQuaternion& other, double tolerance) const {
  for (unsigned int i = 0; i < 4; ++i)
    if (!(std::abs((*this)[i] - other[i]) <= tolerance)) return false;
  return true;
}
MQuaternion MQuaternion::normal() const {
  return quaternionOf(math::normalized(mathOf(*this)));
}
MQuaternion MQuaternion::inverse() const {
  const double square = math::dot(mathOf(*this), mathOf(*this));
  return square > 0.0 ? conjugate() * (1.0 / square) : identity;
}
MQuaternion MQuaternion::log() const {
  const double sine = std::sqrt(x * x + y * y + z * z);
  const double scale = sine > 0.0 ? std::atan2(sine, w) / sine : 1.0;
  return {x * scale, y * scale, z * scale, 0.0};
}
MQuaternion MQuaternion::exp() const {
  const double angle = std::sqrt(x * x + y * y + z * z);
  const double scale = angle > 0.0 ? std::sin(angle) / angle : 1.0;
  return {x * scale, y * scale, z * scale, std::cos(angle)};
}

MQuaternion slerp(const MQuaternion& p, const MQuaternion& q, double t) {
  return quaternionOf(math::slerp(mathOf(p), mathOf(q), t));
}

MQuaternion slerp(const MQuaternion& p, const MQuaternion& q, double t, short spin) {
  // On the shorter arc from p, then `spin` half turns of the four-dimensional sphere more: full
  // turns in space.
  const MQuaternion near = math::dot(mathOf(p), mathOf(q)) < 0.0 ? -q : q;
  MQuaternion step = (p.inverse() * near).log();
  const double angle = std::sqrt(step.x * step.x + step.y * step.y + step.z * step.z);
  if (angle > 0.0) step.scaleIt((angle + static_cast<double>(spin) * math::kPi) / angle * t);
  return p * step.exp();
}

MQuaternion squad(const MQuaternion& p, const MQuaternion& a, const MQuaternion& b,
                  const MQuaternion& q, double t) {
  return slerp(slerp(p, q, t), slerp(a, b, t), 2.0 * t * (1.0 - t));
}

std::ostream& operator<<(std::ostream& os, const MQuaternion& q) {
  return os << '[' << q.x << ", " << q.y << ", " << q.z << ", " << q.w << ']';
}
