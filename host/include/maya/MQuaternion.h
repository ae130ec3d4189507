#pragma once

#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>

class MEulerRotation;
class MMatrix;

#define kQuaternionEpsilon 1.0e-10

/// A rotation as a quaternion; a product applies the left factor first.
class MQuaternion {
 public:
  MQuaternion() = default;
  MQuaternion(double xx, double yy, double zz, double ww) : x(xx), y(yy), z(zz), w(ww) {}
  MQuaternion(const double q[4]) : x(q[0]), y(q[1]), z(q[2]), w(q[3]) {}
  /// Makes the shortest rotation that takes `a` to `b`.
  MQuaternion(const MVector& a, const MVector& b);
  MQuaternion(const MVector& a, const MVector& b, double factor);
  MQuaternion(double angle, const MVector& axis);
  MQuaternion& operator=(const MMatrix& matrix);
  MQuaternion& operator=(const MEulerRotation& euler);
  MQuaternion& setAxisAngle(const MVector& axis, double angle);
  bool getAxisAngle(MVector& axis, double& angle) const;
  MQuaternion& setToXAxis(double angle);
  MQuaternion& setToYAxis(double angle);
  MQuaternion& setToZAxis(double angle);

  MMatrix asMatrix() const;
  MEulerRotation asEulerRotation() const;
  double operator[](unsigned int i) const { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
  double& operator[](unsigned int i) { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
  MStatus get(double dest[4]) const;

  MQuaternion operator+(const MQuaternion& r) const { return {x + r.x, y + r.y, z + r.z, w + r.w}; }
  MQuaternion operator-(const MQuaternion& r) const { return {x - r.x, y - r.y, z - r.z, w - r.w}; }
  MQuaternion operator-() const { return {-x, -y, -z, -w}; }
  MQuaternion operator*(const MQuaternion& right) const;
  MQuaternion& operator*=(const MQuaternion& right) { return *this = *this * right; }
  MQuaternion operator*(double s) const { return {x * s, y * s, z * s, w * s}; }
  MQuaternion& scaleIt(double s) { return *this = *this * s; }
  friend MQuaternion operator*(double s, const MQuaternion& q) { return q * s; }
  bool operator==(const MQuaternion& r) const {
    return x == r.x && y == r.y && z == r.z && w == r.w;
  }
  bool operator!=(const MQuaternion& r) const { return !(*this == r); }
  bool isEquivalent(const MQuaternion& other, double tolerance = kQuaternionEpsilon) const;

  MQuaternion normal() const;
  MQuaternion& normalizeIt() { return *this = normal(); }
  MQuaternion conjugate() const { return {-x, -y, -z, w}; }
  MQuaternion& conjugateIt() { return *this = conjugate(); }
  MQuaternion inverse() const;
  MQuaternion& invertIt() { return *this = inverse(); }
  MQuaternion& negateIt() { return *this = -*this; }
  MQuaternion log() const;
  MQuaternion exp() const;

  static const MQuaternion identity;

  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  double w = 1.0;
};

/// Interpolates on the shorter arc; `spin` adds full turns.
MQuaternion slerp(const MQuaternion& p, const MQuaternion& q, double t);
MQuaternion slerp(const MQuaternion& p, const MQuaternion& q, double t, short spin);
MQuaternion squad(const MQuaternion& p, const MQuaternion& a, const MQuaternion& b,
                  const MQuaternion& q, double t);

std::ostream& operator<<(std::ostream& os, const MQuaternion& q);
