#pragma once

#include <maya/MFloatPoint.h>
#include <maya/MTypes.h>
#include <maya/detail/Array.h>

class MPointArray;

/// Single-precision points.
class MFloatPointArray : public host::api::Array<MFloatPointArray, MFloatPoint> {
 public:
  MFloatPointArray() = default;
  explicit MFloatPointArray(unsigned int initialSize,
                            const MFloatPoint& initialValue = MFloatPoint())
      : Array(initialSize, initialValue) {}
  MFloatPointArray(const MFloatPoint source[], unsigned int count) : Array(source, count) {}
  MFloatPointArray(const float source[][4], unsigned int count) { readTuples(source, count); }
  MFloatPointArray(const double source[][4], unsigned int count) { readTuples(source, count); }

  using Array::append;
  using Array::set;
  MStatus append(float x, float y, float z = 0, float w = 1) {
    return append(MFloatPoint(x, y, z, w));
  }
  MStatus set(unsigned int index, float x, float y, float z, float w = 1) {
    return set(MFloatPoint(x, y, z, w), index);
  }
  MStatus get(float dest[][4]) const { return writeTuples(dest); }
  MStatus get(double dest[][4]) const { return writeTuples(dest); }
  /// Copies double-precision points, narrowing their coordinates.
  void setCast(const MPointArray& source);
};
