#pragma once

#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

#define MMatrix_kTol 1.0e-10

/// A 4 by 4 matrix; points are rows and multiply from the left.
class MMatrix {
 public:
  /// Starts as the identity.
  MMatrix() = default;
  MMatrix(const double m[4][4]);
  MMatrix(const float m[4][4]);

  double& operator()(unsigned int row, unsigned int col) { return matrix[row][col]; }
  double operator()(unsigned int row, unsigned int col) const { return matrix[row][col]; }
  double* operator[](unsigned int row) { return matrix[row]; }
  const double* operator[](unsigned int row) const { return matrix[row]; }
  MStatus get(double dest[4][4]) const;
  MStatus get(float dest[4][4]) const;

  MMatrix& operator+=(const MMatrix& right);
  MMatrix operator+(const MMatrix& right) const;
  MMatrix& operator-=(const MMatrix& right);
  MMatrix operator-(const MMatrix& right) const;
  MMatrix& operator*=(const MMatrix& right);
  MMatrix operator*(const MMatrix& right) const;
  MMatrix& operator*=(double s);
  MMatrix operator*(double s) const;
  bool operator==(const MMatrix& other) const;
  bool operator!=(const MMatrix& other) const { return !(*this == other); }
  friend MMatrix operator*(double s, const MMatrix& m) { return m * s; }

  MMatrix& setToIdentity();
  MMatrix& setToProduct(const MMatrix& left, const MMatrix& right);
  MMatrix transpose() const;
  /// Returns the inverse; the identity when the matrix is singular.
  MMatrix inverse() const;
  MMatrix adjoint() const;
  MMatrix homogenize() const;
  double det4x4() const;
  double det3x3() const;
  bool isSingular() const;
  bool isEquivalent(const MMatrix& other, double tolerance = MMatrix_kTol) const;

  static const MMatrix identity;

  double matrix[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
};

std::ostream& operator<<(std::ostream& os, const MMatrix& m);
