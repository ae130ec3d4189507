#pragma once

#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

#define MFloatMatrix_kTol 1.0e-5F

/// A 4 by 4 matrix in single precision; points are rows and multiply from the left.
class MFloatMatrix {
 public:
  /// Starts as the identity.
  MFloatMatrix() = default;
  MFloatMatrix(const float m[4][4]);
  MFloatMatrix(const double m[4][4]);

  float& operator()(unsigned int row, unsigned int col) { return matrix[row][col]; }
  float operator()(unsigned int row, unsigned int col) const { return matrix[row][col]; }
  float* operator[](unsigned int row) { return matrix[row]; }
  const float* operator[](unsigned int row) const { return matrix[row]; }
  MStatus get(float dest[4][4]) const;
  MStatus get(double dest[4][4]) const;

  MFloatMatrix& operator+=(const MFloatMatrix& right);
  MFloatMatrix operator+(const MFloatMatrix& right) const;
  MFloatMatrix& operator-=(const MFloatMatrix& right);
  MFloatMatrix operator-(const MFloatMatrix& right) const;
  MFloatMatrix& operator*=(const MFloatMatrix& right);
  MFloatMatrix operator*(const MFloatMatrix& right) const;
  MFloatMatrix& operator*=(float s);
  MFloatMatrix operator*(float s) const;
  bool operator==(const MFloatMatrix& other) const;
  bool operator!=(const MFloatMatrix& other) const { return !(*this == other); }
  friend MFloatMatrix operator*(float s, const MFloatMatrix& m) { return m * s; }

  MFloatMatrix& setToIdentity();
  MFloatMatrix& setToProduct(const MFloatMatrix& left, const MFloatMatrix& right);
  MFloatMatrix transpose() const;
  /// Returns the inverse; the identity when the matrix is singular.
  MFloatMatrix inverse() const;
  MFloatMatrix adjoint() const;
  MFloatMatrix homogenize() const;
  float det4x4() const;
  float det3x3() const;
  bool isSingular() const;
  bool isEquivalent(const MFloatMatrix& other, float tolerance = MFloatMatrix_kTol) const;

  static const MFloatMatrix identity;

  float matrix[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
};

std::ostream& operator<<(std::ostream& os, const MFloatMatrix& m);
