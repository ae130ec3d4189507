#pragma once

#include <maya/MMatrix.h>
#include <maya/MPoint.h>

class MDagPath;

/// The mirror plane of a mesh, for points in world space: an axis of the world or of the mesh's own
/// space is 0 on it.
class mirrorPlane {
 public:
  /// @param axis 0 x, 1 y, 2 z
  mirrorPlane(const MDagPath& mesh, int axis, bool inWorldSpace);
  MPoint reflect(const MPoint& worldPoint) const;

 private:
  unsigned int axis;
  bool inObjectSpace;
  MMatrix toObject, toWorld;
};
