#include "shared/mesh/shownMesh.h"

#include <maya/MFn.h>
#include <maya/MFnDagNode.h>

MStatus extendToShownMesh(MDagPath& path) {
  if (!path.isValid()) return MS::kFailure;
  if (path.node().hasFn(MFn::kMesh)) return MS::kSuccess;
  unsigned int count = 0;
  path.numberOfShapesDirectlyBelow(count);
  for (unsigned int i = 0; i < count; ++i) {
    MDagPath shape = path;
    if (shape.extendToShapeDirectlyBelow(i) != MS::kSuccess || !shape.hasFn(MFn::kMesh)) continue;
    if (MFnDagNode(shape).isIntermediateObject()) continue;
    path = shape;
    return MS::kSuccess;
  }
  return MS::kFailure;
}
