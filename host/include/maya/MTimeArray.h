#pragma once

#include <maya/MTime.h>
#include <maya/MTypes.h>
#include <maya/detail/Array.h>

/// Times.
class MTimeArray : public host::api::Array<MTimeArray, MTime> {
 public:
  MTimeArray() = default;
  explicit MTimeArray(unsigned int initialSize, const MTime& initialValue = MTime())
      : Array(initialSize, initialValue) {}
  MTimeArray(const MTime source[], unsigned int count) : Array(source, count) {}

  MStatus get(MTime dest[]) const {
    std::copy(begin(), end(), dest);
    return MStatus::kSuccess;
  }
};
