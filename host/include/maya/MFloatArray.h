#pragma once

#include <maya/MTypes.h>
#include <maya/detail/Array.h>

/// Single-precision numbers.
class MFloatArray : public host::api::Array<MFloatArray, float> {
 public:
  MFloatArray() = default;
  explicit MFloatArray(unsigned int initialSize, float initialValue = 0.0F)
      : Array(initialSize, initialValue) {}
  MFloatArray(const float source[], unsigned int count) : Array(source, count) {}
  MFloatArray(const double source[], unsigned int count) {
    setLength(count);
    for (unsigned int i = 0; i < count; ++i) (*this)[i] = static_cast<float>(source[i]);
  }

  MStatus get(float dest[]) const {
    std::copy(begin(), end(), dest);
    return MStatus::kSuccess;
  }
  MStatus get(double dest[]) const {
    for (unsigned int i = 0; i < length(); ++i) dest[i] = static_cast<double>((*this)[i]);
    return MStatus::kSuccess;
  }
};
