#pragma once

#include <maya/MPoint.h>
#include <maya/MTypes.h>
#include <maya/detail/Array.h>

/// Points.
class MPointArray : public host::api::Array<MPointArray, MPoint> {
 public:
  MPointArray() = default;
  explicit MPointArray(unsigned int initialSize, const MPoint& initialValue = MPoint())
      : Array(initialSize, initialValue) {}
  MPointArray(const MPoint source[], unsigned int count) : Array(source, count) {}
  MPointArray(const double source[][4], unsigned int count) { readTuples(source, count); }
  MPointArray(const float source[][4], unsigned int count) { readTuples(source, count); }

  using Array::append;
  using Array::set;
  MStatus append(double x, double y, double z = 0, double w = 1) {
    return append(MPoint(x, y, z, w));
  }
  MStatus set(unsigned int index, double x, double y, double z, double w = 1) {
    return set(MPoint(x, y, z, w), index);
  }
  MStatus get(double dest[][4]) const { return writeTuples(dest); }
  MStatus get(float dest[][4]) const { return writeTuples(dest); }
};
