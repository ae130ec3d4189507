#pragma once

#include <maya/MColorArray.h>
#include <maya/MPointArray.h>
#include <maya/MUIDrawManager.h>
#include <maya/MVectorArray.h>

#include "host/api/view/shape_points.h"
#include "host/api/view/view_access.h"

namespace host::api {

/// Adds points, segments or triangles with the manager's pen. Nothing is added outside a drawable,
/// or when a coordinate is not finite. Normals and colours are as long as the points or empty.
void addShape(DrawRep& pen, viewport::Primitive primitive, const ShapePoints& points, bool isScreen,
              std::vector<math::Vec3f> normals = {}, std::vector<std::uint32_t> colors = {});

[[nodiscard]] inline math::Vec3 toVec3(const MPoint& p) {
  return {p.x, p.y, p.z};
}
[[nodiscard]] inline math::Vec3 toVec3(const MVector& v) {
  return {v.x, v.y, v.z};
}

/// The pen behind a manager; one that draws nothing when the manager is used after its call.
[[nodiscard]] DrawRep& penOf(const MHWRender::MUIDrawManager& manager);

}  // namespace host::api
