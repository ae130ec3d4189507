#pragma once

#include <maya/MFloatPoint.h>
#include <maya/MFloatVector.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// A point on a mesh that a query found, in the mesh's object space.
class MPointOnMesh {
 public:
  MPointOnMesh() = default;

  MFloatPoint& getPoint() { return point_; }
  const MFloatPoint& getPoint() const { return point_; }
  MFloatVector& getNormal() { return normal_; }
  const MFloatVector& getNormal() const { return normal_; }
  void getBarycentricCoords(float& u, float& v) const {
    u = u_;
    v = v_;
  }
  int faceIndex() const { return face_; }
  int triangleIndex() const { return triangle_; }

 private:
  friend struct host::api::Access;
  friend class MMeshIntersector;
  MFloatPoint point_;
  MFloatVector normal_;
  float u_ = 0.0F;
  float v_ = 0.0F;
  int face_ = -1;
  int triangle_ = -1;
};
