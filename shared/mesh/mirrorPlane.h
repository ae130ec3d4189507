#pragma once

#include <maya/MMatrix.h>
#include <maya/MPoint.h>

class MDagPath;

/// The mirror plane of a mesh, for points in world space: an axis of the world or of the mesh's own
/// space is 0 on it. A mesh whose transform can't be inverted is judged by its untransformed space.
class mirrorPlane {
 public:
  /// @param axis 0 x, 1 y, 2 z
  mirrorPlane(const MDagPath& mesh, int axis, bool inWorldSpace);
  /// Which side a point lies on; the plane itself counts as positive.
  bool isPositive(const MPoint& worldPoint) const;
  MPoint reflect(const MPoint& worldPoint) const;

 private:
  unsigned int axis;
  bool inObjectSpace;
  MMatrix toObject, toWorld;
};
