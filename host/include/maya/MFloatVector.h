#pragma once

#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

class MFloatMatrix;
class MFloatPoint;
class MPoint;
class MVector;

#define MFloatVector_kTol 1.0e-5F

/// A direction or displacement in single precision.
class MFloatVector {
 public:
  MFloatVector() = default;
  MFloatVector(const MVector& v);
  MFloatVector(const MFloatPoint& p);
  MFloatVector(const MPoint& p);
  MFloatVector(const float v[3]) : x(v[0]), y(v[1]), z(v[2]) {}
  MFloatVector(const double v[3])
      : x(static_cast<float>(v[0])), y(static_cast<float>(v[1])), z(static_cast<float>(v[2])) {}
  MFloatVector(float xx, float yy, float zz = 0.0F) : x(xx), y(yy), z(zz) {}

  MStatus get(float dest[3]) const;
  MStatus get(double dest[3]) const;
  float& operator()(unsigned int i) { return i == 0 ? x : i == 1 ? y : z; }
  float operator()(unsigned int i) const { return i == 0 ? x : i == 1 ? y : z; }
  float& operator[](unsigned int i) { return (*this)(i); }
  float operator[](unsigned int i) const { return (*this)(i); }

  MFloatVector operator^(const MFloatVector& r) const {
    return {y * r.z - z * r.y, z * r.x - x * r.z, x * r.y - y * r.x};
  }
  float operator*(const MFloatVector& r) const { return x * r.x + y * r.y + z * r.z; }
  MFloatVector operator*(float s) const { return {x * s, y * s, z * s}; }
  MFloatVector operator*(const MFloatMatrix& m) const;
  MFloatVector operator/(float s) const { return {x / s, y / s, z / s}; }
  MFloatVector operator+(const MFloatVector& r) const { return {x + r.x, y + r.y, z + r.z}; }
  MFloatVector operator-(const MFloatVector& r) const { return {x - r.x, y - r.y, z - r.z}; }
  MFloatVector operator-() const { return {-x, -y, -z}; }
  MFloatVector& operator+=(const MFloatVector& r) { return *this = *this + r; }
  MFloatVector& operator-=(const MFloatVector& r) { return *this = *this - r; }
  MFloatVector& operator*=(float s) { return *this = *this * s; }
  MFloatVector& operator*=(const MFloatMatrix& m) { return *this = *this * m; }
  MFloatVector& operator/=(float s) { return *this = *this / s; }
  bool operator==(const MFloatVector& r) const { return x == r.x && y == r.y && z == r.z; }
  bool operator!=(const MFloatVector& r) const { return !(*this == r); }
  friend MFloatVector operator*(float s, const MFloatVector& v) { return v * s; }
  friend MFloatVector operator*(const MFloatMatrix& m, const MFloatVector& v);

  float length() const;
  MFloatVector normal() const;
  /// Scales to length one; a zero vector is left alone and reported.
  MStatus normalize();
  /// Returns the angle to `other` in radians, 0 to pi.
  float angle(const MFloatVector& other) const;
  bool isEquivalent(const MFloatVector& other, float tolerance = MFloatVector_kTol) const;
  bool isParallel(const MFloatVector& other, float tolerance = MFloatVector_kTol) const;
  /// Transforms as a normal: by the inverse transpose of the matrix.
  MFloatVector transformAsNormal(const MFloatMatrix& matrix) const;

  static const MFloatVector zero;
  static const MFloatVector one;
  static const MFloatVector xAxis;
  static const MFloatVector yAxis;
  static const MFloatVector zAxis;
  static const MFloatVector xNegAxis;
  static const MFloatVector yNegAxis;
  static const MFloatVector zNegAxis;

  float x = 0.0F;
  float y = 0.0F;
  float z = 0.0F;
};

std::ostream& operator<<(std::ostream& os, const MFloatVector& v);
