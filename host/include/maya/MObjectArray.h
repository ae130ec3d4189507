#pragma once

#include <maya/MObject.h>
#include <maya/MTypes.h>
#include <maya/detail/Array.h>

/// Objects.
class MObjectArray : public host::api::Array<MObjectArray, MObject> {
 public:
  MObjectArray() = default;
  explicit MObjectArray(unsigned int initialSize, const MObject& initialValue = MObject())
      : Array(initialSize, initialValue) {}
  MObjectArray(const MObject source[], unsigned int count) : Array(source, count) {}

  MStatus get(MObject dest[]) const {
    std::copy(begin(), end(), dest);
    return MStatus::kSuccess;
  }
};
