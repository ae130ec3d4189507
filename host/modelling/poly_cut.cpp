#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/math/box.h"
#include "host/math/euler.h"
#include "host/math/plane.h"
#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/chip_off.h"
#include "host/ops/topology/delete_faces.h"
#include "host/ops/topology/plane_cut.h"

namespace host::modelling {

namespace {

/// The pieces of the faces that were cut, and of those that lie whole on one side, which are beyond
/// the plane.
std::vector<FaceId> facesBeyond(const mesh::Mesh& mesh, const std::vector<std::uint8_t>& wanted,
                                const std::vector<double>& height, Index facesBefore) {
  std::vector<FaceId> beyond;
  for (FaceId face = 0; face < mesh.faceCount(); ++face) {
    if (face < facesBefore && wanted[at(face)] == 0) continue;
    double sum = 0;
    for (const VertexId v : mesh.faceVertices(face)) sum += height[at(v)];
    if (sum > 0) beyond.push_back(face);
  }
  return beyond;
}

Result<void> extract(HistoryContext& context, const std::vector<FaceId>& faces) {
  ops::ChipOffOptions options;
  options.duplicate = false;
  auto made = ops::chipOff(context.mesh, faces, options);
  if (!made) return failWith(made.error());
  const math::Vec3 offset = context.vec3("extractOffset");
  const auto back = math::inverse(context.space());
  if (!back) return fail("the object is scaled to nothing; its faces can't be moved");
  const math::Vec3 step = math::transformVector(offset, *back);
  const auto points = context.mesh.editPoints();
  std::vector<std::uint8_t> moved(points.size(), 0);
  for (const FaceId face : made->faces)
    for (const VertexId v : context.mesh.faceVertices(face)) moved[at(v)] = 1;
  for (std::size_t v = 0; v < points.size(); ++v)
    if (moved[v] != 0) points[v] = (math::Vec3(points[v]) + step).toFloat();
  context.makes(std::move(made->faces));
  return {};
}

Result<void> cut(HistoryContext& context) {
  const math::Matrix4 space = context.space();
  // The plane lies across z before it is turned.
  const math::Vec3 normal =
      math::transformVector({0, 0, 1}, math::eulerToMatrix(context.vec3("cutPlaneRotate")));
  const math::Plane plane(context.vec3("cutPlaneCenter"), normal);
  const mesh::Mesh before = context.mesh;
  math::Box box;
  for (const math::Vec3f& point : before.points())
    box.add(math::transformPoint(math::Vec3(point), space));
  const double tolerance = 1e-6 * std::max(box.diagonal(), 1e-3);
  const std::vector<std::uint8_t> wanted = ops::flagsOf(context.faces(), before.faceCount());
  std::vector<EdgeId> edges = ops::cutAtZero(
      context.mesh,
      [&](VertexId v) {
        return plane.signedDistance(math::transformPoint(before.point(v), space));
      },
      tolerance, nullptr, wanted);
  const bool deletes = context.boolean("deleteFaces"), extracts = context.boolean("extractFaces");
  if (!deletes && !extracts) {
    context.makes(std::move(edges));
    return {};
  }
  std::vector<double> height;
  for (VertexId v = 0; v < context.mesh.vertexCount(); ++v) {
    const double own = plane.signedDistance(math::transformPoint(context.mesh.point(v), space));
    height.push_back(std::abs(own) <= 4 * tolerance ? 0 : own);
  }
  const std::vector<FaceId> beyond = facesBeyond(context.mesh, wanted, height, before.faceCount());
  if (extracts) return extract(context, beyond);
  const auto deleted = ops::deleteFaces(context.mesh, beyond);
  return deleted ? Result<void>() : failWith(deleted.error());
}

/// -cuttingDirection: through the middle of the box, across an axis.
Result<void> placePlane(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                        const std::vector<Index>&) {
  if (!args.has("cuttingDirection")) return {};
  const std::string axis = args.text("cuttingDirection");
  constexpr double kQuarter = std::numbers::pi / 2;
  math::Vec3 turn;
  if (axis == "x")
    turn.y = kQuarter;
  else if (axis == "y")
    turn.x = -kQuarter;
  else if (axis != "z")
    return fail("polyCut: -cuttingDirection is x, y or z, not '{}'.", axis);
  const auto world = context.document.graph().get(node.plug("worldSpace"));
  const bool isWorld = world && dg::equal(*world, std::int64_t{1});
  const math::Matrix4 space = isWorld ? item.path.inclusiveMatrix() : math::Matrix4();
  math::Box box;
  for (const math::Vec3f& point : item.mesh.points())
    box.add(math::transformPoint(math::Vec3(point), space));
  dg::Graph& graph = context.document.graph();
  HOST_TRY(graph.setVec3(node.plug("cutPlaneRotate"), turn));
  return graph.setVec3(node.plug("cutPlaneCenter"), box.center());
}

}  // namespace

void polyCut(Declarations& add) {
  add("polyCut", "Cuts faces along a plane.")
      .node("polyCut", typeCode("PLCT"), "polyModifierWorld")
      .takes(ComponentType::Face)
      .leaves(Leaves::Made)
      .parameter(triple("cutPlaneCenter", "pc", AttributeType::Distance), "where the plane stands")
      .parameter(triple("cutPlaneRotate", "ro", AttributeType::Angle, {}, "r"),
                 "turns the plane, which lies across z")
      .flag("ro", "cutPlaneRotate", "r")
      .parameter(numbers("cutPlaneSize", "ps", "double2",
                         {real("cutPlaneWidth", "pw", 1), real("cutPlaneHeight", "ph", 1)}),
                 "of the plane's picture")
      .recordedOnly()
      .parameter(boolean("deleteFaces", "df"), "what lies beyond the plane goes")
      .parameter(boolean("extractFaces", "ef"), "what lies beyond the plane comes off")
      .parameter(triple("extractOffset", "eo", AttributeType::Distance, {0.5, 0.5, 0.5}),
                 "moves what comes off")
      .parameter(boolean("onObject", "oo", true), "of the plane's handle")
      .recordedOnly()
      .extraFlag({.shortName = "cd",
                  .longName = "cuttingDirection",
                  .args = {ArgType::String},
                  .modes = kCreate,
                  .meaning = "x, y or z: cuts across it, through the middle of the object's box"})
      .afterFlags(placePlane)
      .trial("-cd y", "f")
      .trial("-pc 0.1 0 0 -ro 10 80 0 -df 1", "f")
      .trial("-cd z -ef 1 -eo 0 0 0.3 -ws 1", "f")
      .operation(cut);
}

}  // namespace host::modelling
