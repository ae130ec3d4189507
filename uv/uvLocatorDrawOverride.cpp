#include "uv/uvLocatorDrawOverride.h"

#include <maya/MDagPath.h>
#include <maya/MMatrix.h>

#include "uv/uvSelectLocator.h"

uvLocatorData::~uvLocatorData() = default;

UVLocatorDrawOverride::UVLocatorDrawOverride(const MObject& node)
    : MPxDrawOverride(node, nullptr) {}
UVLocatorDrawOverride::~UVLocatorDrawOverride() = default;

MHWRender::MPxDrawOverride* UVLocatorDrawOverride::creator(const MObject& node) {
  return new UVLocatorDrawOverride(node);
}

MBoundingBox UVLocatorDrawOverride::boundingBox(const MDagPath& path, const MDagPath&) const {
  return uvSelectLocator::marksOf(path.node()).box();
}

MMatrix UVLocatorDrawOverride::transform(const MDagPath&, const MDagPath&) const {
  return MMatrix();
}

MUserData* UVLocatorDrawOverride::prepareForDraw(const MDagPath& path, const MDagPath&,
                                                 const MHWRender::MFrameContext&, MUserData* old) {
  auto* data = dynamic_cast<uvLocatorData*>(old);
  if (!data) data = new uvLocatorData;
  data->marks = uvSelectLocator::marksOf(path.node());
  return data;
}

void UVLocatorDrawOverride::addUIDrawables(const MDagPath&, MHWRender::MUIDrawManager& manager,
                                           const MHWRender::MFrameContext&, const MUserData* data) {
  if (const auto* prepared = dynamic_cast<const uvLocatorData*>(data))
    drawMarksWithManager(prepared->marks, manager);
}
