#pragma once

#include <maya/MFloatPoint.h>
#include <maya/MFloatVector.h>
#include <maya/MMatrix.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MPointOnMesh.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// Finds the closest points of a mesh, many times over.
class MMeshIntersector {
 public:
  MMeshIntersector() = default;
  MMeshIntersector(const MMeshIntersector&) = delete;
  MMeshIntersector& operator=(const MMeshIntersector&) = delete;

  /// Takes the mesh as it is now; points are given and returned in the space that `matrix` takes it
  /// to.
  MStatus create(const MObject& meshObject, const MMatrix& matrix = MMatrix::identity);
  bool isCreated() const;
  MStatus getClosestPoint(const MPoint& point, MPointOnMesh& meshPoint,
                          double maxDistance = 1.7976931348623157e308) const;

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
