#pragma once

#include <maya/MTypes.h>
#include <maya/detail/Array.h>

/// 64-bit integers.
class MInt64Array : public host::api::Array<MInt64Array, MInt64> {
 public:
  MInt64Array() = default;
  explicit MInt64Array(unsigned int initialSize, MInt64 initialValue = 0)
      : Array(initialSize, initialValue) {}
  MInt64Array(const MInt64 source[], unsigned int count) : Array(source, count) {}

  MStatus get(MInt64 dest[]) const {
    std::copy(begin(), end(), dest);
    return MStatus::kSuccess;
  }
};
