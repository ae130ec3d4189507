#include "host/modelling/declare/placement.h"

#include <numbers>

#include "host/math/box.h"

namespace host::modelling {

namespace {

constexpr auto kLength = AttributeType::Distance, kAngle = AttributeType::Angle,
               kNumber = AttributeType::Double;

/// What older versions did with the moved components; at rest in every scene of today.
void addOldMotions(Declaration& declaration) {
  declaration.parameter(single("random", "ran"), "varies the motion from component to component")
      .withoutEffect()
      .parameter(integer("randomSeed", "rs"), "seed of -random")
      .recordedOnly()
      .parameter(single("gain", "ga", 1), "strength of -random")
      .recordedOnly()
      .parameter(triple("localDirection", "ld", kLength, {1, 0, 0}), "the local x axis")
      .withoutEffect();
}

}  // namespace

void addMotion(Declaration& declaration) {
  declaration
      .parameter(keyable(triple("translate", "t", kLength)), "moves all along the world's axes")
      .parameter(keyable(triple("rotate", "ro", kAngle, {}, "r")), "turns all about -pivot")
      .flag("ro", "rotate", "r")
      .parameter(keyable(triple("scale", "s", kNumber, {1, 1, 1})), "scales all about -pivot")
      .parameter(keyable(triple("pivot", "pvt", kLength, {}, "pv")),
                 "centre of -rotate and -scale; at first the middle of what moves")
      .flag("pvt", "pivot", "pv")
      .parameter(keyable(triple("localTranslate", "lt", kLength)),
                 "moves each region in its frame, z along its normal");
  addOldMotions(declaration);
}

void addLocalTurns(Declaration& declaration) {
  declaration
      .parameter(keyable(triple("localRotate", "lr", kAngle)), "turns each region in its frame")
      .parameter(keyable(triple("localScale", "ls", kNumber, {1, 1, 1})),
                 "scales each region in its frame")
      .parameter(integer("localCenter", "lc"), "0 the middle, 1 the start, 2 the end of an edge")
      .withoutEffect();
}

void addOffset(Declaration& declaration) {
  declaration.parameter(keyable(real("offset", "off")), "draws the rim of each region in, cm");
}

void addPlacement(Declaration& declaration) {
  addMotion(declaration);
  addLocalTurns(declaration);
  addOffset(declaration);
  declaration.parameter(triple("compBoundingBoxMin", "cbn", kLength), "box of what moves")
      .noFlag()
      .recordedOnly()
      .parameter(triple("compBoundingBoxMax", "cbx", kLength, {}, "cx"), "box of what moves")
      .noFlag()
      .recordedOnly();
}

void addFacePlacement(Declaration& declaration) {
  declaration.parameter(single("weight", "w"), "pull of -gravity")
      .withoutEffect()
      .parameter(triple("gravity", "g", kLength, {0, -1, 0}), "direction of -weight")
      .recordedOnly()
      .parameter(single("attraction", "att"), "pull to -magnet")
      .withoutEffect()
      .parameter(triple("magnet", "m", kLength), "where -attraction pulls to")
      .recordedOnly();
}

void addExtrusion(Declaration& declaration) {
  constexpr double kThirtyDegrees = std::numbers::pi / 6;
  addPlacement(declaration);
  declaration.parameter(keyable(atLeast(integer("divisions", "d", 1), 1)), "segments along the way")
      .parameter(keyable(angle("twist", "twt")), "turns the far end about its normal")
      .parameter(keyable(real("taper", "tp", 1)), "scales the far end")
      .parameter(keyable(real("thickness", "tk")), "moves the planes of the faces out, cm")
      .parameter(angle("smoothingAngle", "sma", kThirtyDegrees), "new edges are hard beyond it")
      .parameter(array(compound(
                     "taperCurve", "c",
                     {single("taperCurve_Position", "cp"), single("taperCurve_FloatValue", "cfv"),
                      choice("taperCurve_Interp", "ci", {"None", "Linear", "Smooth", "Spline"})})),
                 "scale along the way")
      .recordedOnly()
      .parameter(notStored(dg::makeTyped("inputProfile", "ipc", "nurbsCurve")), "curve to follow")
      .recordedOnly();
}

ops::ExtrudePlacement placementOf(const HistoryContext& context) {
  const auto has = [&](std::string_view attribute) {
    return context.node().type().find(attribute) != nullptr;
  };
  ops::ExtrudePlacement placement;
  if (has("offset")) placement.offset = context.real("offset");
  placement.local.translate = context.vec3("localTranslate");
  if (has("localRotate")) {
    placement.local.rotate = context.vec3("localRotate");
    placement.local.scale = context.vec3("localScale");
  }
  placement.world = {context.vec3("translate"), context.vec3("rotate"), context.vec3("scale")};
  placement.pivot = context.vec3("pivot");
  placement.space = context.space();
  return placement;
}

ops::ExtrudePlacement extrusionOf(const HistoryContext& context) {
  ops::ExtrudePlacement placement = placementOf(context);
  placement.divisions = context.integer("divisions");
  placement.thickness = context.real("thickness");
  placement.taper = context.real("taper");
  placement.twist = context.real("twist");
  placement.smoothingAngle = context.real("smoothingAngle");
  return placement;
}

bool isOn(Context& context, Node& node, std::string_view attribute) {
  const auto value = context.document.graph().get(node.plug(attribute));
  return value && !dg::equal(*value, std::int64_t{0});
}

Result<void> setPlacementFrame(Context& context, const ParsedArgs& args, Node& node,
                               const MeshItem& item, const std::vector<Index>& ids,
                               ComponentType type) {
  dg::Graph& graph = context.document.graph();
  const math::Matrix4 space =
      isOn(context, node, "worldSpace") ? item.path.inclusiveMatrix() : math::Matrix4();
  math::Box box;
  for (const VertexId vertex :
       mesh::convertComponents(item.mesh, type, ids, mesh::ComponentType::Vertex))
    box.add(math::transformPoint(item.mesh.point(vertex), space));
  if (box.isEmpty()) return {};
  if (node.plug("compBoundingBoxMin")) {
    HOST_TRY(graph.setVec3(node.plug("compBoundingBoxMin"), box.min));
    HOST_TRY(graph.setVec3(node.plug("compBoundingBoxMax"), box.max));
  }
  for (const char* flag : {"pivot", "pivotX", "pivotY", "pivotZ"})
    if (args.has(flag)) return {};
  return graph.setVec3(node.plug("pivot"), (box.min + box.max) * 0.5);
}

}  // namespace host::modelling
