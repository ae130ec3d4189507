#include "quaddraw/locatorPoints.h"

#include <maya/MDagModifier.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MGlobal.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>

#include "quaddraw/quadDrawLocator.h"
#include "shared/mesh/mathHelper.h"

namespace {

/// The quad draw locator of the tool's name; null when there is none or the name is another node's.
MObject locatorInScene() {
  MSelectionList list;
  MObject node;
  if (list.add(quadDrawLocator::kName) != MS::kSuccess ||
      list.getDependNode(0, node) != MS::kSuccess)
    return MObject();
  if (node.hasFn(MFn::kTransform)) {
    const MFnDagNode transform(node);
    node = transform.childCount() > 0 ? transform.child(0) : MObject();
  }
  if (node.isNull() || MFnDependencyNode(node).typeId() != quadDrawLocator::id) return MObject();
  return node;
}

MPlug plugOf(const MObject& node, const char* name, const char* missing) {
  MStatus status;
  const MFnDependencyNode fn(node, &status);
  if (status != MS::kSuccess) return MPlug();
  const MPlug plug = fn.findPlug(name, false, &status);
  if (status == MS::kSuccess) return plug;
  MGlobal::displayError(missing);
  return MPlug();
}

bool write(const MObject& node, const char* name, const char* missing, const MPointArray& points,
           const char* unmade) {
  MPlug plug = plugOf(node, name, missing);
  if (plug.isNull()) return false;
  MStatus made;
  const MObject data = MFnPointArrayData().create(points, &made);
  if (made != MS::kSuccess) MGlobal::displayError(unmade);
  return made == MS::kSuccess && plug.setMObject(data) == MS::kSuccess;
}

bool isSame(const MPointArray& a, const MPointArray& b) {
  if (a.length() != b.length()) return false;
  for (unsigned int i = 0; i < a.length(); ++i)
    if (a[i] != b[i]) return false;
  return true;
}

/// Puts the object in hand back into the component mode it was in.
void restoreComponentMode(const MSelectionList& selected, int type) {
  const char* mode = nullptr;
  if (type == mathHelper::kVertexType || type == mathHelper::kNoType) mode = "vertex";
  if (type == mathHelper::kEdgeType) mode = "edge";
  if (type == mathHelper::kFaceType) mode = "facet";
  MStringArray names;
  if (selected.length() > 0) selected.getSelectionStrings(0, names);
  if (!mode || names.length() == 0) return;
  MGlobal::executeCommand("doMenuComponentSelection(\"" + names[0] + "\", \"" + mode + "\")", false,
                          false);
  // The menu takes the object out of the selection; the tool goes on drawing on it.
  MGlobal::setActiveSelectionList(selected, MGlobal::kReplaceList);
}

}  // namespace

bool locatorPoints::makeNode() {
  MDagModifier modifier;
  MStatus status;
  const MObject above = modifier.createNode(quadDrawLocator::id, MObject::kNullObj, &status);
  if (status == MS::kSuccess) status = modifier.doIt();
  if (status != MS::kSuccess) {
    MGlobal::displayError("error creating node");
    return false;
  }
  MObject made = above;
  if (above.hasFn(MFn::kTransform)) made = MFnDagNode(above).child(0, &status);
  MFnDagNode fn;
  if (status == MS::kSuccess) status = fn.setObject(made);
  if (status != MS::kSuccess) {
    MGlobal::displayError("cannot attach the object to the MFnDagNode");
    modifier.undoIt();
    return false;
  }
  fn.setName(quadDrawLocator::kName);
  shape = MObjectHandle(made);
  return true;
}

/// A view that shows chosen objects only shows the points too.
void locatorPoints::showInIsolation(const MString& name) const {
  MString panel;
  MGlobal::executeCommand("paneLayout -q -pane1 viewPanes", panel, false, false);
  int isolates = 0;
  if (panel.length() > 0)
    MGlobal::executeCommand("isolateSelect -q -s " + panel, isolates, false, false);
  if (isolates == 1)
    MGlobal::executeCommand("isolateSelect -ado \"" + name + "\" " + panel, false, false);
}

void locatorPoints::create() {
  shape = MObjectHandle();
  const MObject left = locatorInScene();
  if (!left.isNull()) {
    shape = MObjectHandle(left);
    return;
  }
  MSelectionList selected, hilited;
  MGlobal::getActiveSelectionList(selected);
  MGlobal::getHiliteList(hilited);
  const int type = mathHelper().currentComponentType();
  if (!makeNode()) return;
  // Its own name but where another node has it too.
  const MString name = MFnDagNode(shape.object()).partialPathName();
  MGlobal::executeCommand("select " + name, false, false);
  showInIsolation(name);
  MGlobal::setActiveSelectionList(selected, MGlobal::kReplaceList);
  MGlobal::setHiliteList(hilited);
  restoreComponentMode(selected, type);
}

void locatorPoints::remove() {
  if (isThere()) {
    const MFnDagNode fn(shape.object());
    MObject node = fn.parentCount() > 0 ? fn.parent(0) : shape.object();
    MDagModifier modifier;
    if (modifier.deleteNode(node) == MS::kSuccess) modifier.doIt();
  }
  shape = MObjectHandle();
}

MPointArray locatorPoints::loose() const {
  if (!isThere()) return MPointArray();
  return quadDrawLocator::pointsAt(plugOf(node(), "parr", "cannot find point attribute"));
}

void locatorPoints::setLoose(const MPointArray& points) {
  if (isThere())
    write(node(), "parr", "cannot find point attribute", points,
          "error creating a new MObject from a pointArray");
}

MPointArray locatorPoints::preview() const {
  if (!isThere()) return MPointArray();
  return quadDrawLocator::pointsAt(plugOf(node(), "geoparr", "cannot find geo attribute"));
}

void locatorPoints::clearPreview() {
  if (isThere())
    write(node(), "geoparr", "cannot find geo attribute", MPointArray(),
          "error creating a new MObject from a geoClosestPointArray");
}

bool locatorPoints::setPreview(const MPointArray& points) {
  if (!isThere() || isSame(preview(), points)) return false;
  return write(node(), "geoparr", "cannot find geo attribute", points,
               "error creating a new MObject from a geoClosestPointArray");
}
