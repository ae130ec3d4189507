#pragma once

#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/detail/Array.h>

/// Texts.
class MStringArray : public host::api::Array<MStringArray, MString> {
 public:
  MStringArray() = default;
  explicit MStringArray(unsigned int initialSize, const MString& initialValue = MString())
      : Array(initialSize, initialValue) {}
  MStringArray(const MString source[], unsigned int count) : Array(source, count) {}
  MStringArray(const char* const source[], unsigned int count) {
    setLength(count);
    for (unsigned int i = 0; i < count; ++i) (*this)[i] = source[i];
  }

  MStatus get(MString dest[]) const {
    std::copy(begin(), end(), dest);
    return MStatus::kSuccess;
  }
};
