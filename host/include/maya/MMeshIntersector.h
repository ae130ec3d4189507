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

  /// Takes the mesh as it is now. Points are asked, and distances measured, in the space that
  /// `matrix` takes it to, its world as a rule; answers are in the mesh's own object space.
  MStatus create(const MObject& meshObject, const MMatrix& matrix = MMatrix::identity);
  bool isCreated() const;
  MStatus getClosestPoint(const MPoint& point, MPointOnMesh& meshPoint,
                          double maxDistance = 1.7976931348623157e308) const;

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
