#pragma once

#include <maya/MFn.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// Refers to something that the host owns: a node, an attribute, a component list, a data value, a
/// plug-in.
///
/// Copies refer to the same thing. Function sets (`MFn...`) read and change what it refers to.
class MObject {
 public:
  MObject() = default;

  bool hasFn(MFn::Type functionSet) const;
  bool isNull() const;
  MFn::Type apiType() const;
  /// Returns the name of the enumerator, such as "kMesh".
  const char* apiTypeStr() const;
  bool operator==(const MObject& other) const;
  bool operator!=(const MObject& other) const { return !(*this == other); }

  static MObject kNullObj;

 private:
  friend struct host::api::Access;
  explicit MObject(host::api::Handle handle) : handle_(std::move(handle)) {}
  host::api::Handle handle_;
};
