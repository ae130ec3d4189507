#pragma once

#include <maya/MFloatVector.h>
#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MTypes.h>

class MEulerRotation;
class MFloatPoint;
class MMatrix;
class MPoint;
class MQuaternion;

#define MVector_kTol 1.0e-10

/// A direction or displacement.
class MVector {
 public:
  enum Axis { kXaxis, kYaxis, kZaxis, kWaxis };

  MVector() = default;
  MVector(const MFloatVector& v) : x(v.x), y(v.y), z(v.z) {}
  MVector(const MPoint& p);
  MVector(const MFloatPoint& p);
  MVector(const double v[3]) : x(v[0]), y(v[1]), z(v[2]) {}
  MVector(const float v[3])
      : x(static_cast<double>(v[0])), y(static_cast<double>(v[1])), z(static_cast<double>(v[2])) {}
  MVector(double xx, double yy, double zz = 0.0) : x(xx), y(yy), z(zz) {}

  MStatus get(double dest[3]) const;
  MStatus get(float dest[3]) const;
  double& operator()(unsigned int i) { return i == 0 ? x : i == 1 ? y : z; }
  double operator()(unsigned int i) const { return i == 0 ? x : i == 1 ? y : z; }
  double& operator[](unsigned int i) { return (*this)(i); }
  double operator[](unsigned int i) const { return (*this)(i); }

  MVector operator^(const MVector& r) const {
    return {y * r.z - z * r.y, z * r.x - x * r.z, x * r.y - y * r.x};
  }
  double operator*(const MVector& r) const { return x * r.x + y * r.y + z * r.z; }
  MVector operator*(double s) const { return {x * s, y * s, z * s}; }
  MVector operator*(const MMatrix& m) const;
  MVector operator/(double s) const { return {x / s, y / s, z / s}; }
  MVector operator+(const MVector& r) const { return {x + r.x, y + r.y, z + r.z}; }
  MVector operator-(const MVector& r) const { return {x - r.x, y - r.y, z - r.z}; }
  MVector operator-() const { return {-x, -y, -z}; }
  MVector& operator+=(const MVector& r) { return *this = *this + r; }
  MVector& operator-=(const MVector& r) { return *this = *this - r; }
  MVector& operator*=(double s) { return *this = *this * s; }
  MVector& operator*=(const MMatrix& m) { return *this = *this * m; }
  MVector& operator/=(double s) { return *this = *this / s; }
  bool operator==(const MVector& r) const { return x == r.x && y == r.y && z == r.z; }
  bool operator!=(const MVector& r) const { return !(*this == r); }
  friend MVector operator*(double s, const MVector& v) { return v * s; }
  friend MVector operator*(const MMatrix& m, const MVector& v);

  /// Returns the vector rotated by a quaternion, by angles about the axes, about one axis, or by a
  /// rotation.
  MVector rotateBy(double qx, double qy, double qz, double qw) const;
  MVector rotateBy(const double rotXYZ[3], MTransformationMatrix::RotationOrder order) const;
  MVector rotateBy(Axis axis, double angle) const;
  MVector rotateBy(const MQuaternion& q) const;
  MVector rotateBy(const MEulerRotation& e) const;
  /// Returns the rotation that takes this direction to the direction of `v` by the shortest way.
  MQuaternion rotateTo(const MVector& v) const;

  double length() const;
  MVector normal() const;
  /// Scales to length one; a zero vector is left alone and reported.
  MStatus normalize();
  /// Returns the angle to `other` in radians, 0 to pi.
  double angle(const MVector& other) const;
  bool isEquivalent(const MVector& other, double tolerance = MVector_kTol) const;
  bool isParallel(const MVector& other, double tolerance = MVector_kTol) const;
  /// Transforms as a normal: by the inverse transpose of the matrix.
  MVector transformAsNormal(const MMatrix& matrix) const;

  static const MVector zero;
  static const MVector one;
  static const MVector xAxis;
  static const MVector yAxis;
  static const MVector zAxis;
  static const MVector xNegAxis;
  static const MVector yNegAxis;
  static const MVector zNegAxis;

  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

std::ostream& operator<<(std::ostream& os, const MVector& v);

// At the end, because these hold vectors; plug-ins expect them to come along.
#include <maya/MEulerRotation.h>
#include <maya/MPoint.h>
#include <maya/MQuaternion.h>
