#pragma once

#include <maya/MColor.h>
#include <maya/MTypes.h>
#include <maya/detail/Array.h>

/// Colours.
class MColorArray : public host::api::Array<MColorArray, MColor> {
 public:
  MColorArray() = default;
  explicit MColorArray(unsigned int initialSize, const MColor& initialValue = MColor())
      : Array(initialSize, initialValue) {}
  MColorArray(const MColor source[], unsigned int count) : Array(source, count) {}
  MColorArray(const float source[][4], unsigned int count) {
    setLength(count);
    for (unsigned int i = 0; i < count; ++i)
      (*this)[i] = MColor(source[i][0], source[i][1], source[i][2], source[i][3]);
  }

  using Array::append;
  using Array::set;
  MStatus append(float r, float g = 0.0F, float b = 0.0F, float a = 1.0F) {
    return append(MColor(r, g, b, a));
  }
  MStatus set(unsigned int index, float r, float g = 0.0F, float b = 0.0F, float a = 1.0F) {
    return set(MColor(r, g, b, a), index);
  }
  MStatus get(float dest[][4]) const { return writeTuples(dest); }
};
