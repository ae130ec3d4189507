#include "brushes/brushCursor.h"

#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MPlug.h>

#include "modeling/drawLocator.h"

const char* const brushCursor::kName = "qxBrushCursor";
const char* const brushCursor::kMirroredName = "qxBrushMirrorCursor";

namespace {

void setPoints(const MObject& node, const MObject& attribute, const MPointArray& points) {
  MPlug(node, attribute).setMObject(MFnPointArrayData().create(points));
}

}  // namespace

brushCursor::ring::ring(const char* name)
    : locator(drawLocator::id, name, "error creating draw locator node") {}

brushCursor::brushCursor() : own(kName), mirrored(kMirroredName) {}

bool brushCursor::ring::show(const brushCursorPlace& place) {
  if (isSamePoints(place.outline, shown) && place.strength == strength &&
      (locator.isThere() || shown.length() == 0))
    return false;
  if (!locator.isThere()) {
    if (place.outline.length() == 0) return false;
    // What an earlier session of the tool has left goes first.
    if (locator.takeOver()) locator.remove();
    if (!locator.create()) return false;
  }
  const MObject node = locator.node();
  MPointArray dot;
  MDoubleArray weight;
  if (place.outline.length() > 0) {
    dot.append(place.dot);
    weight.append(place.strength);
  }
  setPoints(node, drawLocator::radiusPointArray, place.outline);
  setPoints(node, drawLocator::pointArray, dot);
  MPlug(node, drawLocator::ssRadiusValueArray).setMObject(MFnDoubleArrayData().create(weight));
  shown = place.outline;
  strength = place.strength;
  return true;
}

void brushCursor::ring::remove() {
  locator.remove();
  shown.clear();
}

bool brushCursor::show(const brushCursorPlace& place) {
  return own.show(place);
}

bool brushCursor::showMirrored(const brushCursorPlace& place) {
  return mirrored.show(place);
}

bool brushCursor::clear() {
  const bool wasShown = own.show(brushCursorPlace());
  return mirrored.show(brushCursorPlace()) || wasShown;
}

void brushCursor::remove() {
  own.remove();
  mirrored.remove();
}
