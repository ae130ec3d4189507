#pragma once

#include <maya/MFloatVector.h>
#include <maya/MTypes.h>
#include <maya/detail/Array.h>

/// Single-precision vectors.
class MFloatVectorArray : public host::api::Array<MFloatVectorArray, MFloatVector> {
 public:
  MFloatVectorArray() = default;
  explicit MFloatVectorArray(unsigned int initialSize,
                             const MFloatVector& initialValue = MFloatVector())
      : Array(initialSize, initialValue) {}
  MFloatVectorArray(const MFloatVector source[], unsigned int count) : Array(source, count) {}
  MFloatVectorArray(const float source[][3], unsigned int count) { readTuples(source, count); }
  MFloatVectorArray(const double source[][3], unsigned int count) { readTuples(source, count); }

  using Array::append;
  using Array::set;
  MStatus append(float x, float y, float z = 0) { return append(MFloatVector(x, y, z)); }
  MStatus set(unsigned int index, float x, float y, float z) {
    return set(MFloatVector(x, y, z), index);
  }
  MStatus get(float dest[][3]) const { return writeTuples(dest); }
  MStatus get(double dest[][3]) const { return writeTuples(dest); }
};
