#pragma once

#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>

class MMatrix;
class MQuaternion;

#define kEulerRotationEpsilon 1.0e-10

/// A rotation as three angles in radians and the order in which they apply.
class MEulerRotation {
 public:
  enum RotationOrder { kXYZ, kYZX, kZXY, kXZY, kYXZ, kZYX };

  MEulerRotation() = default;
  MEulerRotation(const MVector& v, RotationOrder o = kXYZ) : x(v.x), y(v.y), z(v.z), order(o) {}
  MEulerRotation(double xx, double yy, double zz, RotationOrder o = kXYZ)
      : x(xx), y(yy), z(zz), order(o) {}
  MEulerRotation(const double angles[3], RotationOrder o = kXYZ)
      : x(angles[0]), y(angles[1]), z(angles[2]), order(o) {}
  MEulerRotation& operator=(const MMatrix& matrix);
  MEulerRotation& operator=(const MQuaternion& quaternion);

  MStatus setValue(const MVector& v, RotationOrder o = kXYZ);
  MStatus setValue(double xx, double yy, double zz, RotationOrder o = kXYZ);
  MStatus setValue(const double angles[3], RotationOrder o = kXYZ);
  MStatus setValue(const MMatrix& matrix);
  MStatus setValue(const MQuaternion& quaternion);

  MQuaternion asQuaternion() const;
  MMatrix asMatrix() const;
  MVector asVector() const { return {x, y, z}; }
  double operator[](unsigned int i) const { return i == 0 ? x : i == 1 ? y : z; }
  double& operator[](unsigned int i) { return i == 0 ? x : i == 1 ? y : z; }
  MStatus get(double dest[3]) const;

  MEulerRotation operator+(const MEulerRotation& other) const;
  MEulerRotation operator+(const MVector& v) const;
  MEulerRotation& operator+=(const MEulerRotation& other);
  MEulerRotation& operator+=(const MVector& v);
  MEulerRotation operator-() const;
  MEulerRotation operator-(const MEulerRotation& other) const;
  MEulerRotation& operator-=(const MEulerRotation& other);
  MEulerRotation operator*(double s) const { return {x * s, y * s, z * s, order}; }
  MEulerRotation& operator*=(double s) { return *this = *this * s; }
  /// Returns the rotation that applies this one, then `other`, in this one's order.
  MEulerRotation operator*(const MEulerRotation& other) const;
  MEulerRotation operator*(const MQuaternion& other) const;
  MEulerRotation& operator*=(const MEulerRotation& other) { return *this = *this * other; }
  MEulerRotation& operator*=(const MQuaternion& other) { return *this = *this * other; }
  bool operator==(const MEulerRotation& r) const {
    return x == r.x && y == r.y && z == r.z && order == r.order;
  }
  bool operator!=(const MEulerRotation& r) const { return !(*this == r); }
  bool isEquivalent(const MEulerRotation& other, double tolerance = kEulerRotationEpsilon) const;
  bool isZero(double tolerance = kEulerRotationEpsilon) const;

  MEulerRotation& incrementalRotateBy(const MVector& axis, double angle);
  MEulerRotation inverse() const;
  MEulerRotation& invertIt() { return *this = inverse(); }
  MEulerRotation reorder(RotationOrder order) const;
  MEulerRotation& reorderIt(RotationOrder newOrder) { return *this = reorder(newOrder); }
  /// Returns the same rotation with every angle within -pi to pi.
  MEulerRotation bound() const;
  MEulerRotation& boundIt() { return *this = bound(); }
  MEulerRotation& boundIt(const MEulerRotation& source) { return *this = source.bound(); }
  /// Returns the other set of angles that gives the same rotation.
  MEulerRotation alternateSolution() const;
  MEulerRotation& setToAlternateSolution() { return *this = alternateSolution(); }
  MEulerRotation& setToAlternateSolution(const MEulerRotation& e) {
    return *this = e.alternateSolution();
  }
  /// Returns the angles of the same rotation that lie nearest to those of `target`.
  MEulerRotation closestSolution(const MEulerRotation& target) const;
  MEulerRotation& setToClosestSolution(const MEulerRotation& target) {
    return *this = closestSolution(target);
  }
  MEulerRotation& setToClosestSolution(const MEulerRotation& source, const MEulerRotation& target) {
    return *this = source.closestSolution(target);
  }
  MEulerRotation closestCut(const MEulerRotation& target) const;
  MEulerRotation& setToClosestCut(const MEulerRotation& target) {
    return *this = closestCut(target);
  }
  static MEulerRotation decompose(const MMatrix& matrix, RotationOrder order);

  static const MEulerRotation identity;

  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  RotationOrder order = kXYZ;
};

std::ostream& operator<<(std::ostream& os, const MEulerRotation& e);
