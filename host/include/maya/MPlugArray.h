#pragma once

#include <maya/MPlug.h>
#include <maya/MTypes.h>
#include <maya/detail/Array.h>

/// Plugs.
class MPlugArray : public host::api::Array<MPlugArray, MPlug> {
 public:
  MPlugArray() = default;
  explicit MPlugArray(unsigned int initialSize, const MPlug& initialValue = MPlug())
      : Array(initialSize, initialValue) {}
  MPlugArray(const MPlug source[], unsigned int count) : Array(source, count) {}

  MStatus get(MPlug dest[]) const {
    std::copy(begin(), end(), dest);
    return MStatus::kSuccess;
  }
};
