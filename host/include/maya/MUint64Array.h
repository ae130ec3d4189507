#pragma once

#include <maya/MTypes.h>
#include <maya/detail/Array.h>

/// Unsigned 64-bit integers.
class MUint64Array : public host::api::Array<MUint64Array, MUint64> {
 public:
  MUint64Array() = default;
  explicit MUint64Array(unsigned int initialSize, MUint64 initialValue = 0)
      : Array(initialSize, initialValue) {}
  MUint64Array(const MUint64 source[], unsigned int count) : Array(source, count) {}

  MStatus get(MUint64 dest[]) const {
    std::copy(begin(), end(), dest);
    return MStatus::kSuccess;
  }
};
