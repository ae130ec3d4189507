#include "modeling/locatorOverrides.h"

#include <maya/MBoundingBox.h>
#include <maya/MDagPath.h>

#include "modeling/drawLocator.h"
#include "modeling/pinLocator.h"

DrawLocatorData::~DrawLocatorData() = default;
pinLocatorData::~pinLocatorData() = default;

DrawLocatorDrawOverride::DrawLocatorDrawOverride(const MObject& node)
    : MPxDrawOverride(node, nullptr) {}
DrawLocatorDrawOverride::~DrawLocatorDrawOverride() = default;

MHWRender::MPxDrawOverride* DrawLocatorDrawOverride::creator(const MObject& node) {
  return new DrawLocatorDrawOverride(node);
}

MBoundingBox DrawLocatorDrawOverride::boundingBox(const MDagPath&, const MDagPath&) const {
  return drawLocator::fixedBox();
}

MUserData* DrawLocatorDrawOverride::prepareForDraw(const MDagPath& path, const MDagPath&,
                                                   const MHWRender::MFrameContext&,
                                                   MUserData* old) {
  auto* data = dynamic_cast<DrawLocatorData*>(old);
  if (!data) data = new DrawLocatorData;
  data->sets = drawLocator::setsOf(path.node());
  return data;
}

void DrawLocatorDrawOverride::addUIDrawables(const MDagPath&, MHWRender::MUIDrawManager& manager,
                                             const MHWRender::MFrameContext&,
                                             const MUserData* data) {
  if (const auto* prepared = dynamic_cast<const DrawLocatorData*>(data))
    drawWithManager(prepared->sets, manager);
}

pinLocatorDrawOverride::pinLocatorDrawOverride(const MObject& node)
    : MPxDrawOverride(node, nullptr) {}
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

MUserData* pinLocatorDrawOverride::prepareForDraw(const MDagPath& path, const MDagPath&,
                                                  const MHWRender::MFrameContext&, MUserData* old) {
  auto* data = dynamic_cast<pinLocatorData*>(old);
  if (!data) data = new pinLocatorData;
  const pinLocator::pins pins = pinLocator::pinsOf(path.node());
  data->isVisible = pins.isVisible;
  data->points = pins.worldPoints;
  return data;
}

void pinLocatorDrawOverride::addUIDrawables(const MDagPath&, MHWRender::MUIDrawManager& manager,
                                            const MHWRender::MFrameContext&,
                                            const MUserData* data) {
  const auto* prepared = dynamic_cast<const pinLocatorData*>(data);
  if (prepared && prepared->isVisible && prepared->points.length() > 0)
    drawPinsWithManager(prepared->points, manager);
}
