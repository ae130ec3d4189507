#include <numbers>

#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/mirror.h"

namespace host::nodes {

namespace {

Result<void> mirror(HistoryContext& context) {
  using Join = ops::MirrorOptions::Join;
  using Flip = ops::MirrorOptions::FlipUvs;
  constexpr Join kJoins[] = {Join::Apart, Join::Weld, Join::Bridge};
  constexpr Flip kFlips[] = {Flip::None, Flip::U, Flip::V};
  const auto join = context.choice("mergeMode", 3), flip = context.choice("flipUVs", 3);
  if (!join) return failWith(join.error());
  if (!flip) return failWith(flip.error());
  // Older scenes say both in one number: +X, -X, +Y, -Y, +Z, -Z.
  const int both = context.integer("direction");
  const int axis = both >= 0 ? both / 2 : context.integer("axis");
  const bool isNegative = (both >= 0 ? both % 2 : context.integer("axisDirection")) != 0;
  if (axis < 0 || axis > 2) return fail("the mirror axis must be X, Y or Z");
  math::Vec3 normal;
  normal[axis] = isNegative ? -1 : 1;
  ops::MirrorOptions options;
  options.origin = context.vec3("pivot");
  options.normal = normal;
  options.cut = context.boolean("cutMesh");
  options.join = kJoins[*join];
  constexpr double kAutomatic = 0.001;
  const bool isCustom = context.integer("mergeThresholdType") != 0;
  options.distance = isCustom ? context.real("mergeThreshold") : kAutomatic;
  options.flipUvs = kFlips[*flip];
  options.smoothingAngle = context.real("smoothingAngle");
  options.space = context.space();
  auto made = ops::mirrorMesh(context.mesh, options);
  if (!made) return failWith(made.error());
  std::vector<FaceId> faces = std::move(made->copies);
  faces.insert(faces.end(), made->bridges.begin(), made->bridges.end());
  context.makes(scene::ComponentType::Face, std::move(faces));
  return {};
}

}  // namespace

void registerPolyMirror(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyMirror", typeCode("PMIR"), "polyModifierWorld")
      .parameter(limited(choice("axis", "a", {"X", "Y", "Z"}), 0, 2))
      .parameter(choice("axisDirection", "ad", {"Positive", "Negative"}))
      .parameter(limited(integer("direction", "d", -1), -1, 5))
      .parameter(keyable(triple("pivot", "p", AttributeType::Distance)))
      .parameter(boolean("cutMesh", "cm"))
      .parameter(limited(choice("mergeMode", "mm", {"Do not merge", "Merge", "Bridge"}, 1), 0, 2))
      .parameter(choice("mergeThresholdType", "mtt", {"Automatic", "Custom"}, 1))
      .parameter(distance("mergeThreshold", "mt", 0.001))
      .parameter(choice("mirrorAxis", "ma", {"Bounding box", "Object", "World"}))
      .parameter(distance("mirrorPosition", "mps"))
      .parameter(choice("flipUVs", "fuv", {"Off", "U", "V"}))
      .parameter(angle("smoothingAngle", "sa", std::numbers::pi / 6))
      .operation(mirror);
}

}  // namespace host::nodes
