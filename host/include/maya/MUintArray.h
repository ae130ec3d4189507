#pragma once

#include <maya/MTypes.h>
#include <maya/detail/Array.h>

/// Unsigned integers.
class MUintArray : public host::api::Array<MUintArray, unsigned int> {
 public:
  MUintArray() = default;
  explicit MUintArray(unsigned int initialSize, unsigned int initialValue = 0)
      : Array(initialSize, initialValue) {}
  MUintArray(const unsigned int source[], unsigned int count) : Array(source, count) {}

  MStatus get(unsigned int dest[]) const {
    std::copy(begin(), end(), dest);
    return MStatus::kSuccess;
  }
};
