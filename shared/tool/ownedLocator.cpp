#include "shared/tool/ownedLocator.h"

#include <maya/MDagModifier.h>
#include <maya/MFnDagNode.h>
#include <maya/MGlobal.h>
#include <maya/MSelectionList.h>

bool isSamePoints(const MPointArray& a, const MPointArray& b) {
  if (a.length() != b.length()) return false;
  for (unsigned int i = 0; i < a.length(); ++i)
    if (a[i] != b[i]) return false;
  return true;
}

MObject ownedLocator::make() const {
  MDagModifier modifier;
  MStatus status;
  const MObject above = modifier.createNode(typeId, MObject::kNullObj, &status);
  if (status == MS::kSuccess) status = modifier.doIt();
  if (status != MS::kSuccess) {
    MGlobal::displayError(unmadeMessage);
    return MObject();
  }
  MObject made = above;
  if (above.hasFn(MFn::kTransform)) made = MFnDagNode(above).child(0, &status);
  MFnDagNode locator;
  if (status == MS::kSuccess) status = locator.setObject(made);
  if (status != MS::kSuccess) {
    MGlobal::displayError("cannot attach the object to the MFnDagNode");
    modifier.undoIt();
    return MObject();
  }
  locator.setName(wantedName);
  return made;
}

void ownedLocator::hold(const MObject& node) {
  shape = transform = MObjectHandle();
  if (node.isNull()) return;
  shape = MObjectHandle(node);
  const MFnDagNode locator(node);
  if (locator.parentCount() > 0 && locator.parent(0).hasFn(MFn::kTransform))
    transform = MObjectHandle(locator.parent(0));
}

bool ownedLocator::create() {
  MSelectionList selected, hilited;
  MGlobal::getActiveSelectionList(selected);
  MGlobal::getHiliteList(hilited);
  const MObject made = make();
  hold(made);
  if (!isThere()) return false;
  const MString name = MFnDagNode(made).partialPathName();
  MGlobal::executeCommand("select " + name, false, false);
  showInIsolation(name);
  MGlobal::setActiveSelectionList(selected, MGlobal::kReplaceList);
  MGlobal::setHiliteList(hilited);
  return true;
}

void ownedLocator::showInIsolation(const MString& name) const {
  MString panel;
  MGlobal::executeCommand("paneLayout -q -pane1 viewPanes", panel, false, false);
  int isolates = 0;
  if (panel.length() > 0)
    MGlobal::executeCommand("isolateSelect -q -s " + panel, isolates, false, false);
  if (isolates == 1)
    MGlobal::executeCommand("isolateSelect -ado \"" + name + "\" " + panel, false, false);
}

bool ownedLocator::takeOver() {
  hold(MObject());
  MSelectionList list;
  MObject node;
  if (list.add(wantedName) != MS::kSuccess || list.getDependNode(0, node) != MS::kSuccess)
    return false;
  if (node.hasFn(MFn::kTransform)) {
    const MFnDagNode above(node);
    node = above.childCount() > 0 ? above.child(0) : MObject();
  }
  if (node.isNull() || MFnDependencyNode(node).typeId() != typeId) return false;
  hold(node);
  return true;
}

void ownedLocator::remove() {
  MObject node;
  if (transform.isValid() && transform.isAlive())
    node = transform.object();
  else if (isThere())
    node = shape.object();
  MDagModifier modifier;
  if (!node.isNull() && modifier.deleteNode(node) == MS::kSuccess) modifier.doIt();
  hold(MObject());
}
