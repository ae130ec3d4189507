#pragma once

#include <maya/MTypes.h>
#include <maya/detail/Array.h>

/// Integers.
class MIntArray : public host::api::Array<MIntArray, int> {
 public:
  MIntArray() = default;
  explicit MIntArray(unsigned int initialSize, int initialValue = 0)
      : Array(initialSize, initialValue) {}
  MIntArray(const int source[], unsigned int count) : Array(source, count) {}

  MStatus get(int dest[]) const {
    std::copy(begin(), end(), dest);
    return MStatus::kSuccess;
  }
};
