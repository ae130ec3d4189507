#include "modeling/toolLocator.h"

#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MPlug.h>

#include "modeling/drawLocator.h"

const char* const toolLocator::kName = "qxModelingToolsDrawSSPointLocator";

namespace {

void setPoints(const MObject& node, const MObject& attribute, const MPointArray& points) {
  MPlug(node, attribute).setMObject(MFnPointArrayData().create(points));
}

}  // namespace

toolLocator::toolLocator() : locator(drawLocator::id, kName, "error creating draw locator node") {}

void toolLocator::create() {
  if (locator.takeOver()) locator.remove();  // what an earlier session of the tool has left
  shownComponent.clear();
  showsMoved = false;
  if (!locator.create()) return;
  const MObject node = locator.node();
  for (const MObject& attribute :
       {drawLocator::pointArray, drawLocator::radiusPointArray, drawLocator::componentPointArray})
    setPoints(node, attribute, MPointArray());
  MPlug(node, drawLocator::ssRadiusValueArray).setMObject(MFnDoubleArrayData().create());
}

bool toolLocator::showComponent(const MPointArray& corners) {
  if (isSamePoints(corners, shownComponent) && (isThere() || corners.length() == 0)) return false;
  if (!isThere()) create();
  if (!isThere()) return false;
  setPoints(locator.node(), drawLocator::componentPointArray, corners);
  shownComponent = corners;
  return true;
}

void toolLocator::showMoved(const MPointArray& points, const MDoubleArray& weights,
                            const MPointArray& outline) {
  if (!isThere()) create();
  if (!isThere()) return;
  const MObject node = locator.node();
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
