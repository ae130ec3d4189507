#pragma once

#include <maya/MTypes.h>
#include <maya/detail/Array.h>

/// Double-precision numbers.
class MDoubleArray : public host::api::Array<MDoubleArray, double> {
 public:
  MDoubleArray() = default;
  explicit MDoubleArray(unsigned int initialSize, double initialValue = 0.0)
      : Array(initialSize, initialValue) {}
  MDoubleArray(const double source[], unsigned int count) : Array(source, count) {}
  MDoubleArray(const float source[], unsigned int count) {
    setLength(count);
    for (unsigned int i = 0; i < count; ++i) (*this)[i] = static_cast<double>(source[i]);
  }

  MStatus get(double dest[]) const {
    std::copy(begin(), end(), dest);
    return MStatus::kSuccess;
  }
  MStatus get(float dest[]) const {
    for (unsigned int i = 0; i < length(); ++i) dest[i] = static_cast<float>((*this)[i]);
    return MStatus::kSuccess;
  }
};
