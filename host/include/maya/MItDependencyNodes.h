#pragma once

#include <maya/MFn.h>
#include <maya/MIteratorType.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// Visits all nodes of the graph of one type.
class MItDependencyNodes {
 public:
  MItDependencyNodes(MFn::Type filter = MFn::kInvalid, MStatus* status = nullptr);
  MItDependencyNodes(const MIteratorType& filter, MStatus* status = nullptr);
  MItDependencyNodes(const MItDependencyNodes&) = delete;
  MItDependencyNodes& operator=(const MItDependencyNodes&) = delete;

  MStatus reset(MFn::Type filter = MFn::kInvalid);
  MStatus next();
  bool isDone(MStatus* status = nullptr) const;
  MObject thisNode(MStatus* status = nullptr) const;
  /// The deprecated name of `thisNode`.
  MObject item(MStatus* status = nullptr) const { return thisNode(status); }

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
