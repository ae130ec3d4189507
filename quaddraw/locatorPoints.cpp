#include "quaddraw/locatorPoints.h"

#include <maya/MFnDependencyNode.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MGlobal.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>

#include "quaddraw/quadDrawLocator.h"
#include "shared/mesh/mathHelper.h"

namespace {

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

locatorPoints::locatorPoints()
    : locator(quadDrawLocator::id, quadDrawLocator::kName, "error creating node") {}

void locatorPoints::onChange(MNodeMessage::AttributeMessage, MPlug& plug, MPlug&, void* self) {
  auto& points = *static_cast<locatorPoints*>(self);
  if (plug.attribute() != quadDrawLocator::geoPointArray) points.isLooseStale = true;
  if (plug.attribute() != quadDrawLocator::pointArray) points.isPreviewStale = true;
}

void locatorPoints::attach() {
  callbacks.removeAll();
  isLooseStale = isPreviewStale = true;
  MObject shape = locator.node();
  if (!shape.isNull())
    callbacks.add(MNodeMessage::addAttributeChangedCallback(shape, onChange, this));
}

void locatorPoints::create() {
  if (!locator.takeOver()) {
    MSelectionList selected;
    MGlobal::getActiveSelectionList(selected);
    const int type = mathHelper().currentComponentType();
    if (locator.create()) restoreComponentMode(selected, type);
  }
  attach();
}

void locatorPoints::remove() {
  callbacks.removeAll();
  locator.remove();
  isLooseStale = isPreviewStale = true;
}

void locatorPoints::bringUpToDate() {
  if (callbacks.isEmpty() == isThere()) attach();  // it was deleted, or that was undone
  if (isLooseStale) {
    isLooseStale = false;
    ++reads;
    looseNow =
        isThere() ? quadDrawLocator::pointsAt(plugOf(node(), "parr", "cannot find point attribute"))
                  : MPointArray();
  }
  if (isPreviewStale) {
    isPreviewStale = false;
    previewNow =
        isThere()
            ? quadDrawLocator::pointsAt(plugOf(node(), "geoparr", "cannot find geo attribute"))
            : MPointArray();
  }
}

const MPointArray& locatorPoints::loose() {
  bringUpToDate();
  return looseNow;
}

void locatorPoints::setLoose(const MPointArray& points) {
  if (isThere())
    write(node(), "parr", "cannot find point attribute", points,
          "error creating a new MObject from a pointArray");
}

const MPointArray& locatorPoints::preview() {
  bringUpToDate();
  return previewNow;
}

void locatorPoints::clearPreview() {
  if (isThere())
    write(node(), "geoparr", "cannot find geo attribute", MPointArray(),
          "error creating a new MObject from a geoClosestPointArray");
}

bool locatorPoints::setPreview(const MPointArray& points) {
  if (!isThere() || isSamePoints(preview(), points)) return false;
  return write(node(), "geoparr", "cannot find geo attribute", points,
               "error creating a new MObject from a geoClosestPointArray");
}
