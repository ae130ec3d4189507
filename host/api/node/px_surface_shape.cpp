#include <maya/MPxSurfaceShape.h>
#include <maya/MPxSurfaceShapeUI.h>

#include <algorithm>

#include "host/api/core/access.h"

MPxSurfaceShape::MPxSurfaceShape() = default;
MPxSurfaceShape::~MPxSurfaceShape() = default;

bool MPxSurfaceShape::isBounded() const {
  return false;
}
MBoundingBox MPxSurfaceShape::boundingBox() const {
  return {};
}
MSelectionMask MPxSurfaceShape::getShapeSelectionMask() const {
  return MSelectionMask(MSelectionMask::kSelectMeshes);
}
MSelectionMask MPxSurfaceShape::getComponentSelectionMask() const {
  return MSelectionMask(MSelectionMask::kSelectMeshVerts);
}
bool MPxSurfaceShape::excludeAsPluginShape() const {
  return true;
}
void MPxSurfaceShape::componentToPlugs(MObject&, MSelectionList&) const {}
bool MPxSurfaceShape::match(const MSelectionMask&, const MObjectArray&) const {
  return false;
}
MObject MPxSurfaceShape::createFullVertexGroup() const {
  return {};
}
MObject MPxSurfaceShape::localShapeInAttr() const {
  return {};
}
MObject MPxSurfaceShape::localShapeOutAttr() const {
  return {};
}
MObject MPxSurfaceShape::worldShapeOutAttr() const {
  return {};
}
MObject MPxSurfaceShape::cachedShapeAttr() const {
  return {};
}
MObject MPxSurfaceShape::geometryData() const {
  return {};
}
void MPxSurfaceShape::closestPoint(const MPoint& toThisPoint, MPoint& theClosestPoint,
                                   double) const {
  // Of the box: the class that knows the surface says better.
  const MBoundingBox box = boundingBox();
  theClosestPoint = MPoint(std::clamp(toThisPoint.x, box.min().x, box.max().x),
                           std::clamp(toThisPoint.y, box.min().y, box.max().y),
                           std::clamp(toThisPoint.z, box.min().z, box.max().z));
}
void MPxSurfaceShape::transformUsing(const MMatrix&, const MObjectArray&) {}
void MPxSurfaceShape::transformUsing(const MMatrix& by, const MObjectArray& components,
                                     MVertexCachingMode, MPointArray*) {
  transformUsing(by, components);
}
bool MPxSurfaceShape::deleteComponents(const MObjectArray&) {
  return false;
}
bool MPxSurfaceShape::acceptsGeometryIterator(bool) {
  return false;
}
bool MPxSurfaceShape::acceptsGeometryIterator(MObject&, bool, bool) {
  return false;
}

MPxSurfaceShapeUI::MPxSurfaceShapeUI() = default;
MPxSurfaceShapeUI::~MPxSurfaceShapeUI() = default;
void MPxSurfaceShapeUI::getDrawRequests(const MDrawInfo&, bool, MDrawRequestQueue&) {}
void MPxSurfaceShapeUI::draw(const MDrawRequest&, M3dView&) const {}
bool MPxSurfaceShapeUI::select(MSelectInfo&, MSelectionList&, MPointArray&) const {
  return false;
}
