#pragma once

#include <maya/MMatrix.h>
#include <maya/MTypes.h>
#include <maya/detail/Array.h>

/// Matrices.
class MMatrixArray : public host::api::Array<MMatrixArray, MMatrix> {
 public:
  MMatrixArray() = default;
  explicit MMatrixArray(unsigned int initialSize, const MMatrix& initialValue = MMatrix())
      : Array(initialSize, initialValue) {}
  MMatrixArray(const MMatrix source[], unsigned int count) : Array(source, count) {}

  MStatus get(double dest[][4][4]) const {
    for (unsigned int i = 0; i < length(); ++i) (*this)[i].get(dest[i]);
    return MStatus::kSuccess;
  }
  MStatus get(float dest[][4][4]) const {
    for (unsigned int i = 0; i < length(); ++i) (*this)[i].get(dest[i]);
    return MStatus::kSuccess;
  }
};
