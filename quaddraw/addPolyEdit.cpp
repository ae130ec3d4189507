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

/// Ties where the shape stands to the node, so that points in world space stay where they were
/// drawn.
MStatus connectMatrix(MDagModifier& modifier, const MDagPath& shape,
                      const MFnDependencyNode& node) {
  MStatus status;
  const MPlug matrices = MFnDependencyNode(shape.node()).findPlug("parentMatrix", false, &status);
  if (!status) return failWith("cannot find the parentMatrix attribute");
  const MPlug matrix = node.findPlug("inWorldMatrix", false, &status);
  if (!status) return failWith("cannot find the inWorldMatrix attribute");
  status = modifier.connect(matrices.elementByLogicalIndex(shape.instanceNumber()), matrix);
  if (status) status = modifier.doIt();
  return status ? status : failWith("cannot connect the xformMeshPlug to the inWorldMatrixPlug");
}

}  // namespace

MStatus addPolyEdit::fill() const {
  const MFnDependencyNode fn(node);
  const MStatus status = setPoints(fn, "pts", points);
  return status ? setPoints(fn, "mpts", isMirrored ? mirrorPoints : MPointArray()) : status;
}

MStatus addPolyEdit::make() {
  MStatus status;
  MDagModifier modifier;
  node = modifier.MDGModifier::createNode(addPolyNode::id, &status);
  if (!status) return failWith("error creating add poly node");
  if (hasTweakNode) tweakNode = modifier.MDGModifier::createNode("polyTweak", &status);
  if (!status) return failWith("error creating tweak node");
  status = modifier.doIt();
  if (status) status = fill();
  if (status) status = connectMatrix(modifier, mesh, MFnDependencyNode(node));
  if (status) status = mathHelper().insertNodeInHistory(mesh, node, tweakNode, &original);
  if (!status) modifier.undoIt();
  return status;
}

MStatus addPolyEdit::insert() {
  if (!removal) {
    const MStatus status = make();
    if (!status) node = tweakNode = original = MObject::kNullObj;
    return status;
  }
  removal->undoIt();
  MStatus status = fill();
  if (status) status = mathHelper().insertNodeInHistory(mesh, node, tweakNode, &original);
  if (status)
    removal.reset();
  else
    removal->doIt();
  return status;
}

MStatus addPolyEdit::remove() {
  if (node.isNull() || removal) return MS::kFailure;
  removal = std::make_shared<MDGModifier>();
  const MStatus status =
      mathHelper().removeNodeFromHistory(mesh, node, tweakNode, original, removal.get());
  if (!status) removal.reset();
  return status;
}
