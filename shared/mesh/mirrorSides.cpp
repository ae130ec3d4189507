#include "shared/mesh/mirrorSides.h"

#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>

mirrorSides::mirrorSides(const MDagPath& mesh, const mirrorOptions& options,
                         const MPointArray& worldPoints)
    : axis(static_cast<unsigned int>(options.axis)), points(&worldPoints) {
  if (options.inWorldSpace) return;
  if (MFnMesh(mesh).getPoints(stored, MSpace::kObject) == MS::kSuccess) points = &stored;
}

bool mirrorSides::isMeanPositive(const MIntArray& vertices, unsigned int first,
                                 unsigned int count) const {
  double sum = 0.0;
  for (unsigned int i = first; i < first + count; ++i) sum += coordinate(vertices[i]);
  return sum >= 0.0;
}

bool splitByMirror(MIntArray& vertexIds, const mirrorSides& sides) {
  MIntArray negative, positive;
  for (unsigned int i = 0; i < vertexIds.length(); ++i)
    (sides.isPositive(vertexIds[i]) ? positive : negative).append(vertexIds[i]);
  if (negative.length() != positive.length()) return false;
  for (unsigned int i = 0; i < positive.length(); ++i) negative.append(positive[i]);
  vertexIds = negative;
  return true;
}
