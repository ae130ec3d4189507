#include "quaddraw/addPolyEdit.h"

#include <maya/MDagModifier.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MGlobal.h>
#include <maya/MPlug.h>

#include "quaddraw/addPolyNode.h"
#include "shared/mesh/mathHelper.h"

namespace {

MStatus failWith(const char* text) {
  MGlobal::displayError(text);
  return MS::kFailure;
}

MStatus setPoints(const MFnDependencyNode& node, const char* attribute, const MPointArray& points) {
  MStatus status;
  const MObject data = MFnPointArrayData().create(points, &status);
  if (!status) return failWith("error creating a new MObject from a point array");
  MPlug plug = node.findPlug(attribute, false, &status);
  return status ? plug.setValue(data) : status;
}

/// Ties where the mesh stands to the node, so that points in world space stay where they were
/// drawn.
MStatus connectMatrix(MDagModifier& modifier, MDagPath transform, const MFnDependencyNode& node) {
  transform.pop();
  MStatus status;
  const MPlug matrices =
      MFnDependencyNode(transform.node()).findPlug("parentMatrix", false, &status);
  if (!status) return failWith("cannot find the parentMatrix attribute");
  const MPlug matrix = node.findPlug("inWorldMatrix", false, &status);
  if (!status) return failWith("cannot find the inWorldMatrix attribute");
  status = modifier.connect(matrices.elementByLogicalIndex(0), matrix);
  if (status) status = modifier.doIt();
  return status ? status : failWith("cannot connect the xformMeshPlug to the inWorldMatrixPlug");
}

}  // namespace

MStatus addPolyEdit::insert() {
  MStatus status;
  MDagModifier modifier;
  node = modifier.MDGModifier::createNode(addPolyNode::id, &status);
  if (!status) return failWith("error creating add poly node");
  tweakNode = MObject::kNullObj;
  if (hasTweakNode) tweakNode = modifier.MDGModifier::createNode("polyTweak", &status);
  if (!status) return failWith("error creating tweak node");
  status = modifier.doIt();
  if (status) {
    const MFnDependencyNode fn(node);
    status = setPoints(fn, "pts", points);
    if (status && isMirrored) status = setPoints(fn, "mpts", mirrorPoints);
    if (status) status = connectMatrix(modifier, mesh, fn);
  }
  if (status) status = mathHelper().insertNodeInHistory(mesh, node, tweakNode);
  if (status) return status;
  modifier.undoIt();
  node = tweakNode = MObject::kNullObj;
  return status;
}

MStatus addPolyEdit::remove() {
  const MStatus status = mathHelper().removeNodeFromHistory(mesh, node, tweakNode);
  if (status) node = tweakNode = MObject::kNullObj;
  return status;
}
