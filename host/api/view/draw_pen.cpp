#include "host/api/view/draw_pen.h"

#include <cmath>

namespace host::api {
namespace {

using Manager = MHWRender::MUIDrawManager;
using viewport::Pass;
using viewport::Primitive;

viewport::Stipple stippleOf(const DrawRep& pen, Primitive primitive) {
  if (primitive == Primitive::Triangles)
    return pen.paintStyle == Manager::kStippled ? viewport::Stipple::Checkerboard
                                                : viewport::Stipple::None;
  switch (pen.lineStyle) {
    case Manager::kSolid:
      return viewport::Stipple::None;
    case Manager::kShortDashed:
    case Manager::kDashed:
      return viewport::Stipple::Dashed;
    default:
      return viewport::Stipple::Dotted;
  }
}

Pass passOf(const DrawRep& pen, Primitive primitive, bool isScreen) {
  if (isScreen || pen.isXray) return Pass::Overlay;
  // What is to show over the surfaces that it lies on casts no shade on them.
  if (primitive == Primitive::Triangles)
    return pen.color.a < 1 || pen.priority > 0 ? Pass::Translucent : Pass::Opaque;
  return primitive == Primitive::Lines ? Pass::Wire : Pass::Dots;
}

bool isUsable(const math::Vec3& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

}  // namespace

DrawRep& penOf(const Manager& manager) {
  static DrawRep nowhere;
  auto* pen = Access::rep<DrawRep>(manager);
  return pen ? *pen : nowhere;
}

void addShape(DrawRep& pen, Primitive primitive, const ShapePoints& points, bool isScreen,
              std::vector<math::Vec3f> normals, std::vector<std::uint32_t> colors) {
  if (!pen.list || !pen.isOpen || points.empty()) return;
  auto data = std::make_shared<viewport::VertexData>();
  data->positions.reserve(points.size());
  for (const math::Vec3& p : points) {
    if (!isUsable(p)) return;
    data->positions.push_back({static_cast<float>(p.x), static_cast<float>(p.y),
                               isScreen ? 0.0f : static_cast<float>(p.z)});
  }
  data->normals = std::move(normals);
  data->colors = std::move(colors);
  viewport::DrawItem item;
  item.primitive = primitive;
  item.lit = primitive == Primitive::Triangles && !isScreen && pen.paintStyle == Manager::kShaded &&
             !data->normals.empty();
  // Points and lines take normals for the side that they face, which is not what they were given
  // for.
  if (primitive != Primitive::Triangles) data->normals.clear();
  item.color = data->colors.empty() ? pen.color : viewport::Rgba{1, 1, 1, 1};
  item.vertices = std::move(data);
  item.world = isScreen ? math::Matrix4() : pen.world;
  item.space = isScreen ? viewport::Space::Screen : viewport::Space::World;
  item.pass = passOf(pen, primitive, isScreen);
  item.depthTest =
      isScreen || pen.isXray ? viewport::DepthTest::Always : viewport::DepthTest::Nearer;
  item.depthWrite = item.pass == Pass::Opaque;
  item.priority = pen.priority;
  // Of things at one depth the one of higher priority shows, also over the mesh that it lies on.
  constexpr float kPriorityPull = 4;
  item.pull = !isScreen && pen.priority > 0 ? kPriorityPull : 0;
  item.squarePoints = true;  // as the fixed pipeline draws them
  item.width = primitive == Primitive::Points ? pen.pointSize : pen.lineWidth;
  item.stipple =
      primitive == Primitive::Points ? viewport::Stipple::None : stippleOf(pen, primitive);
  pen.list->items.push_back(std::move(item));
}

}  // namespace host::api
