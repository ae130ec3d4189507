#include "uv/meshUvEdit.h"

#include <maya/MFnMesh.h>

#include "uv/modifyUVNode.h"
#include "uv/uvMessages.h"

MStatus meshUvEdit::read(const MDagPath& meshIn) {
  path = meshIn;
  const MFnMesh mesh(path);
  if (!mesh.getUVs(before.u, before.v)) return failWith("could not get uvs!\n");
  if (!mesh.getAssignedUVs(before.counts, before.ids))
    return failWith("could not get assigned uvs!\n");
  return MS::kSuccess;
}

MStatus meshUvEdit::apply() {
  const bool isFirst = step.node.isNull();
  MStatus status = MS::kSuccess;
  if (isFirst) {
    status = step.make(path, modifyUVNode::id, "error creating modify uv node");
    if (status) status = modifyUVNode::fill(step.node, after);
  }
  if (status) status = step.insert();
  if (!status && isFirst) step.discard();
  return status;
}

MStatus meshUvEdit::takeBack() {
  if (step.remove()) return MS::kSuccess;
  MFnMesh mesh(path);
  uvArrays::step failed;
  return before.write(mesh, failed) ? MStatus(MS::kSuccess) : failWith("could not assign!\n");
}
