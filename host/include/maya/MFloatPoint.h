#pragma once

#include <maya/MFloatVector.h>
#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

class MFloatMatrix;
class MPoint;

#define MFloatPoint_kTol 1.0e-5F

/// A homogeneous point in single precision.
class MFloatPoint {
 public:
  MFloatPoint() = default;
  MFloatPoint(const MPoint& p);
  MFloatPoint(const MFloatVector& v) : x(v.x), y(v.y), z(v.z) {}
  MFloatPoint(const float p[4]) : x(p[0]), y(p[1]), z(p[2]), w(p[3]) {}
  MFloatPoint(const double p[4])
      : x(static_cast<float>(p[0])),
        y(static_cast<float>(p[1])),
        z(static_cast<float>(p[2])),
        w(static_cast<float>(p[3])) {}
  MFloatPoint(float xx, float yy, float zz = 0.0F, float ww = 1.0F) : x(xx), y(yy), z(zz), w(ww) {}

  /// Copies a double-precision point, narrowing its coordinates.
  void setCast(const MPoint& p);
  MStatus get(float dest[4]) const;
  MStatus get(double dest[4]) const;
  float& operator()(unsigned int i) { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
  float operator()(unsigned int i) const { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
  float& operator[](unsigned int i) { return (*this)(i); }
  float operator[](unsigned int i) const { return (*this)(i); }

  MFloatVector operator-(const MFloatPoint& r) const;
  MFloatPoint operator+(const MFloatVector& v) const {
    return {x + w * v.x, y + w * v.y, z + w * v.z, w};
  }
  MFloatPoint operator-(const MFloatVector& v) const {
    return {x - w * v.x, y - w * v.y, z - w * v.z, w};
  }
  MFloatPoint& operator+=(const MFloatVector& v) { return *this = *this + v; }
  MFloatPoint& operator-=(const MFloatVector& v) { return *this = *this - v; }
  MFloatPoint operator*(float s) const { return {x * s, y * s, z * s, w}; }
  MFloatPoint operator/(float s) const { return {x / s, y / s, z / s, w}; }
  MFloatPoint operator*(const MFloatMatrix& m) const;
  MFloatPoint& operator*=(float s) { return *this = *this * s; }
  MFloatPoint& operator*=(const MFloatMatrix& m) { return *this = *this * m; }
  bool operator==(const MFloatPoint& r) const {
    return x == r.x && y == r.y && z == r.z && w == r.w;
  }
  bool operator!=(const MFloatPoint& r) const { return !(*this == r); }
  friend MFloatPoint operator*(float s, const MFloatPoint& p) { return p * s; }
  friend MFloatPoint operator*(const MFloatMatrix& m, const MFloatPoint& p);

  /// Divides x, y and z by w and makes w one.
  MFloatPoint& cartesianize();
  /// Divides x, y and z by w, which stays as the weight.
  MFloatPoint& rationalize();
  /// Multiplies x, y and z by w: the reverse of `rationalize`.
  MFloatPoint& homogenize();
  float distanceTo(const MFloatPoint& other) const;
  bool isEquivalent(const MFloatPoint& other, float tolerance = MFloatPoint_kTol) const;

  static const MFloatPoint origin;

  float x = 0.0F;
  float y = 0.0F;
  float z = 0.0F;
  float w = 1.0F;
};

std::ostream& operator<<(std::ostream& os, const MFloatPoint& p);
