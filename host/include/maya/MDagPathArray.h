#pragma once

#include <maya/MDagPath.h>
#include <maya/MTypes.h>
#include <maya/detail/Array.h>

/// DAG paths.
class MDagPathArray : public host::api::Array<MDagPathArray, MDagPath> {
 public:
  MDagPathArray() = default;
  explicit MDagPathArray(unsigned int initialSize, const MDagPath& initialValue = MDagPath())
      : Array(initialSize, initialValue) {}
  MDagPathArray(const MDagPath source[], unsigned int count) : Array(source, count) {}

  MStatus get(MDagPath dest[]) const {
    std::copy(begin(), end(), dest);
    return MStatus::kSuccess;
  }
};
