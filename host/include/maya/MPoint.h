#pragma once

#include <maya/MFloatPoint.h>
#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>

class MMatrix;

#define MPoint_kTol 1.0e-10

/// A homogeneous point.
class MPoint {
 public:
  MPoint() = default;
  MPoint(const MFloatPoint& p) : x(p.x), y(p.y), z(p.z), w(p.w) {}
  MPoint(const MVector& v) : x(v.x), y(v.y), z(v.z) {}
  MPoint(const MFloatVector& v) : x(v.x), y(v.y), z(v.z) {}
  MPoint(const double p[4]) : x(p[0]), y(p[1]), z(p[2]), w(p[3]) {}
  MPoint(const float p[4])
      : x(static_cast<double>(p[0])),
        y(static_cast<double>(p[1])),
        z(static_cast<double>(p[2])),
        w(static_cast<double>(p[3])) {}
  MPoint(double xx, double yy, double zz = 0.0, double ww = 1.0) : x(xx), y(yy), z(zz), w(ww) {}

  MStatus get(double dest[4]) const;
  MStatus get(float dest[4]) const;
  double& operator()(unsigned int i) { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
  double operator()(unsigned int i) const { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
  double& operator[](unsigned int i) { return (*this)(i); }
  double operator[](unsigned int i) const { return (*this)(i); }

  MVector operator-(const MPoint& r) const {
    if (w == r.w && w == 1.0) return {x - r.x, y - r.y, z - r.z};
    const double a = w != 0.0 ? 1.0 / w : 1.0;
    const double b = r.w != 0.0 ? 1.0 / r.w : 1.0;
    return {x * a - r.x * b, y * a - r.y * b, z * a - r.z * b};
  }
  MPoint operator+(const MVector& v) const { return {x + w * v.x, y + w * v.y, z + w * v.z, w}; }
  MPoint operator-(const MVector& v) const { return {x - w * v.x, y - w * v.y, z - w * v.z, w}; }
  MPoint& operator+=(const MVector& v) { return *this = *this + v; }
  MPoint& operator-=(const MVector& v) { return *this = *this - v; }
  MPoint operator*(double s) const { return {x * s, y * s, z * s, w}; }
  MPoint operator/(double s) const { return {x / s, y / s, z / s, w}; }
  MPoint operator*(const MMatrix& m) const;
  MPoint& operator*=(double s) { return *this = *this * s; }
  MPoint& operator*=(const MMatrix& m) { return *this = *this * m; }
  bool operator==(const MPoint& r) const { return x == r.x && y == r.y && z == r.z && w == r.w; }
  bool operator!=(const MPoint& r) const { return !(*this == r); }
  friend MPoint operator*(double s, const MPoint& p) { return p * s; }
  friend MPoint operator*(const MMatrix& m, const MPoint& p);

  /// Divides x, y and z by w and makes w one.
  MPoint& cartesianize();
  /// Divides x, y and z by w, which stays as the weight.
  MPoint& rationalize();
  /// Multiplies x, y and z by w: the reverse of `rationalize`.
  MPoint& homogenize();
  double distanceTo(const MPoint& other) const;
  bool isEquivalent(const MPoint& other, double tolerance = MPoint_kTol) const;

  static const MPoint origin;

  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  double w = 1.0;
};

std::ostream& operator<<(std::ostream& os, const MPoint& p);
