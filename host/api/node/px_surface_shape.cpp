#include <maya/MPxSurfaceShape.h>

#include <algorithm>

#include "host/api/core/access.h"
#include "host/api/node/plugin_points.h"
#include "host/api/view/view_rep.h"
#include "host/scene/dag_paths.h"

using namespace host;

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
bool MPxSurfaceShape::canMakeLive() const {
  return false;
}

bool MPxSurfaceShape::hasActiveComponents() const {
  return activeComponents().length() > 0;
}
MObjectArray MPxSurfaceShape::activeComponents() const {
  const dg::Node* node = api::nodeOf(thisMObject());
  return node ? api::selectedComponents(*node) : MObjectArray();
}
void MPxSurfaceShape::childChanged(MChildChanged) {
  api::scheduleViewRefresh();
}
MMatrix MPxSurfaceShape::getWorldMatrix(MDataBlock&, unsigned int instance) const {
  const dg::Node* node = api::nodeOf(thisMObject());
  if (!node) return {};
  const std::vector<scene::DagPath> paths = scene::allPaths(*node);
  return instance < paths.size() ? api::toMMatrix(paths[instance].inclusiveMatrix()) : MMatrix();
}

MPxSurfaceShape::MatchResult MPxSurfaceShape::matchComponent(const MSelectionList& item,
                                                             const MAttributeSpecArray& spec,
                                                             MSelectionList& list) {
  return api::matchByDefault(*this, item, spec, list);
}
bool MPxSurfaceShape::match(const MSelectionMask& mask, const MObjectArray& componentList) const {
  if (componentList.length() == 0) return mask.intersects(MSelectionMask::kSelectMeshes);
  for (unsigned int i = 0; i < componentList.length(); ++i)
    if (componentList[i].apiType() == MFn::kMeshVertComponent &&
        mask.intersects(MSelectionMask::kSelectMeshVerts))
      return true;
  return false;
}
MObject MPxSurfaceShape::createFullVertexGroup() const {
  return {};
}
MObject MPxSurfaceShape::createFullRenderGroup() const {
  return {};
}
void MPxSurfaceShape::componentToPlugs(MObject&, MSelectionList&) const {}
MPxGeometryIterator* MPxSurfaceShape::geometryIteratorSetup(MObjectArray&, MObject&, bool) {
  return nullptr;
}
bool MPxSurfaceShape::acceptsGeometryIterator(bool) {
  return false;
}
bool MPxSurfaceShape::acceptsGeometryIterator(MObject&, bool writeable, bool) {
  return acceptsGeometryIterator(writeable);
}
void MPxSurfaceShape::transformUsing(const MMatrix& by, const MObjectArray& components) {
  api::moveByDefault(*this, by, components);
}
void MPxSurfaceShape::transformUsing(const MMatrix& by, const MObjectArray& components,
                                     MVertexCachingMode, MPointArray*) {
  transformUsing(by, components);
}
void MPxSurfaceShape::tweakUsing(const MMatrix& by, const MObjectArray& components,
                                 MVertexCachingMode cachingMode, MPointArray* pointCache,
                                 MArrayDataHandle&) {
  transformUsing(by, components, cachingMode, pointCache);
}
bool MPxSurfaceShape::deleteComponents(const MObjectArray&, MDoubleArray&) {
  return false;
}
bool MPxSurfaceShape::undeleteComponents(const MObjectArray&, MDoubleArray&) {
  return false;
}
bool MPxSurfaceShape::vertexOffsetDirection(MObject&, MVectorArray&, MVertexOffsetMode, bool) {
  return false;
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
