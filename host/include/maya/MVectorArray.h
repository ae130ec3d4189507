#pragma once

#include <maya/MTypes.h>
#include <maya/MVector.h>
#include <maya/detail/Array.h>

/// Vectors.
class MVectorArray : public host::api::Array<MVectorArray, MVector> {
 public:
  MVectorArray() = default;
  explicit MVectorArray(unsigned int initialSize, const MVector& initialValue = MVector())
      : Array(initialSize, initialValue) {}
  MVectorArray(const MVector source[], unsigned int count) : Array(source, count) {}
  MVectorArray(const double source[][3], unsigned int count) { readTuples(source, count); }
  MVectorArray(const float source[][3], unsigned int count) { readTuples(source, count); }

  using Array::append;
  using Array::set;
  MStatus append(double x, double y, double z = 0) { return append(MVector(x, y, z)); }
  MStatus set(unsigned int index, double x, double y, double z) {
    return set(MVector(x, y, z), index);
  }
  MStatus get(double dest[][3]) const { return writeTuples(dest); }
  MStatus get(float dest[][3]) const { return writeTuples(dest); }
};
