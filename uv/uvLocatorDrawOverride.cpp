#include "uv/uvLocatorDrawOverride.h"

#include <maya/MBoundingBox.h>
#include <maya/MMatrix.h>

#include "uv/uvSelectLocator.h"

uvLocatorData::~uvLocatorData() = default;

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

void UVLocatorDrawOverride::read(const MDagPath& path, uvLocatorData& data) const {
  data.marks = uvSelectLocator::marksOf(path.node());
}

void UVLocatorDrawOverride::draw(const uvLocatorData& data,
                                 MHWRender::MUIDrawManager& manager) const {
  drawMarksWithManager(data.marks, manager);
}
