#include "modeling/toolLocator.h"

#include <maya/MFnDagNode.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MGlobal.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include "modeling/drawLocator.h"

const char* const toolLocator::kName = "qxModelingToolsDrawSSPointLocator";

namespace {

void run(const MString& command) {
  MGlobal::executeCommand(command, false, false);
}

int ask(const MString& command) {
  int answer = 0;
  MGlobal::executeCommand(command, answer, false, false);
  return answer;
}

/// Takes away what an earlier session of the tool has left, with the transform above it.
void removeLeftOver() {
  MSelectionList list;
  MObject left;
  if (list.add(toolLocator::kName) != MS::kSuccess || list.getDependNode(0, left) != MS::kSuccess)
    return;
  if (left.hasFn(MFn::kShape)) {
    const MFnDagNode node(left);
    MObject parent = node.parentCount() > 0 ? node.parent(0) : MObject();
    if (parent.hasFn(MFn::kTransform)) left = parent;
  }
  MGlobal::deleteNode(left);
}

bool isSame(const MPointArray& a, const MPointArray& b) {
  if (a.length() != b.length()) return false;
  for (unsigned int i = 0; i < a.length(); ++i)
    if (a[i] != b[i]) return false;
  return true;
}

void setPoints(const MObject& node, const MObject& attribute, const MPointArray& points) {
  MPlug(node, attribute).setMObject(MFnPointArrayData().create(points));
}

}  // namespace

void toolLocator::create() {
  removeLeftOver();
  MSelectionList selected, hilited;
  MGlobal::getActiveSelectionList(selected);
  MGlobal::getHiliteList(hilited);
  MStatus status;
  MFnDagNode made;
  const MObject above = made.create(drawLocator::id, MObject::kNullObj, &status);
  if (status != MS::kSuccess) {
    MGlobal::displayError("error creating draw locator node");
    return;
  }
  const MFnDagNode parent(above, &status);
  MObject below = above;
  if (status == MS::kSuccess && above.hasFn(MFn::kTransform)) below = parent.child(0, &status);
  MFnDagNode locator;
  if (status == MS::kSuccess) status = locator.setObject(below);
  if (status != MS::kSuccess) {
    MGlobal::displayError("cannot attach the object to the MFnDagNode");
    MObject left = above;
    MGlobal::deleteNode(left);
    return;
  }
  locator.setName(kName);
  transform = MObjectHandle(above);
  shape = MObjectHandle(below);
  shownComponent.clear();
  showsMoved = false;
  run(MString("select ") + kName);
  showInIsolation();
  MGlobal::setActiveSelectionList(selected, MGlobal::kReplaceList);
  MGlobal::setHiliteList(hilited);
  for (const MObject& attribute :
       {drawLocator::pointArray, drawLocator::radiusPointArray, drawLocator::componentPointArray})
    setPoints(below, attribute, MPointArray());
  MPlug(below, drawLocator::ssRadiusValueArray).setMObject(MFnDoubleArrayData().create());
}

/// A view that shows chosen objects only shows the tool's feedback too.
void toolLocator::showInIsolation() const {
  MString panel;
  MGlobal::executeCommand("paneLayout -q -pane1 viewPanes", panel, false, false);
  if (panel.length() == 0 || ask("isolateSelect -q -s " + panel) != 1) return;
  run(MString("isolateSelect -ado \"") + kName + "\" " + panel);
}

void toolLocator::remove() {
  if (transform.isValid() && transform.isAlive()) {
    MObject node = transform.object();
    MGlobal::deleteNode(node);
  }
  shape = transform = MObjectHandle();
}

bool toolLocator::showComponent(const MPointArray& corners) {
  if (isSame(corners, shownComponent) && (isThere() || corners.length() == 0)) return false;
  if (!isThere()) create();
  if (!isThere()) return false;
  setPoints(shape.object(), drawLocator::componentPointArray, corners);
  shownComponent = corners;
  return true;
}

void toolLocator::showMoved(const MPointArray& points, const MDoubleArray& weights,
                            const MPointArray& outline) {
  if (!isThere()) create();
  if (!isThere()) return;
  const MObject node = shape.object();
  setPoints(node, drawLocator::pointArray, points);
  MPlug(node, drawLocator::ssRadiusValueArray).setMObject(MFnDoubleArrayData().create(weights));
  setPoints(node, drawLocator::radiusPointArray, outline);
  showsMoved = true;
}

bool toolLocator::clear() {
  const bool wasShown = showsMoved || shownComponent.length() > 0;
  if (isThere() && showsMoved) showMoved(MPointArray(), MDoubleArray(), MPointArray());
  showsMoved = false;
  if (isThere()) showComponent(MPointArray());
  shownComponent.clear();
  return wasShown;
}
