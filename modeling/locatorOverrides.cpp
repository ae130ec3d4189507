#include "modeling/locatorOverrides.h"

#include <maya/MBoundingBox.h>
#include <maya/MMatrix.h>

#include "modeling/drawLocator.h"
#include "modeling/pinLocator.h"

DrawLocatorData::~DrawLocatorData() = default;
pinLocatorData::~pinLocatorData() = default;

DrawLocatorDrawOverride::~DrawLocatorDrawOverride() = default;

MHWRender::MPxDrawOverride* DrawLocatorDrawOverride::creator(const MObject& node) {
  return new DrawLocatorDrawOverride(node);
}

MBoundingBox DrawLocatorDrawOverride::boundingBox(const MDagPath&, const MDagPath&) const {
  return drawLocator::fixedBox();
}

void DrawLocatorDrawOverride::read(const MDagPath& path, DrawLocatorData& data) const {
  data.sets = drawLocator::setsOf(path.node());
}

void DrawLocatorDrawOverride::draw(const DrawLocatorData& data,
                                   MHWRender::MUIDrawManager& manager) const {
  drawWithManager(data.sets, manager);
}

pinLocatorDrawOverride::~pinLocatorDrawOverride() = default;

MHWRender::MPxDrawOverride* pinLocatorDrawOverride::creator(const MObject& node) {
  return new pinLocatorDrawOverride(node);
}

MBoundingBox pinLocatorDrawOverride::boundingBox(const MDagPath&, const MDagPath&) const {
  return drawLocator::fixedBox();
}

MMatrix pinLocatorDrawOverride::transform(const MDagPath&, const MDagPath&) const {
  return MMatrix();
}

void pinLocatorDrawOverride::read(const MDagPath& path, pinLocatorData& data) const {
  const pinLocator::pins pins = pinLocator::pinsOf(path.node());
  data.isVisible = pins.isVisible;
  data.points = pins.worldPoints;
}

void pinLocatorDrawOverride::draw(const pinLocatorData& data,
                                  MHWRender::MUIDrawManager& manager) const {
  if (data.isVisible && data.points.length() > 0) drawPinsWithManager(data.points, manager);
}
