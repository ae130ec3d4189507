#include "shared/mesh/mirrorPlane.h"

#include <maya/MDagPath.h>

mirrorPlane::mirrorPlane(const MDagPath& mesh, int axisIn, bool inWorldSpace)
    : axis(static_cast<unsigned int>(axisIn)), inObjectSpace(!inWorldSpace) {
  if (!inObjectSpace) return;
  toObject = mesh.inclusiveMatrixInverse();
  toWorld = mesh.inclusiveMatrix();
}

MPoint mirrorPlane::reflect(const MPoint& worldPoint) const {
  MPoint point = inObjectSpace ? worldPoint * toObject : worldPoint;
  point[axis] = -point[axis];
  return inObjectSpace ? point * toWorld : point;
}
