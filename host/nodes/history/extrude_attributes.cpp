#include "host/nodes/history/extrude_attributes.h"

#include <numbers>

namespace host::nodes {

void addPlacementAttributes(HistoryNodeBuilder& builder) {
  constexpr auto kLength = AttributeType::Distance, kAngle = AttributeType::Angle,
                 kScale = AttributeType::Double;
  builder.parameter(keyable(triple("translate", "t", kLength)))
      .parameter(keyable(triple("rotate", "r", kAngle)))
      .parameter(keyable(triple("scale", "s", kScale, {1, 1, 1})))
      .parameter(keyable(triple("pivot", "pvt", kLength)))
      .parameter(keyable(triple("localTranslate", "lt", kLength)))
      .parameter(keyable(triple("localRotate", "lr", kAngle)))
      .parameter(keyable(triple("localScale", "ls", kScale, {1, 1, 1})))
      .parameter(keyable(distance("offset", "off")))
      .parameter(integer("randomSeed", "rs"))
      .parameter(triple("compBoundingBoxMin", "cbn", kLength))
      .parameter(triple("compBoundingBoxMax", "cbx", kLength));
}

void addExtrudeAttributes(HistoryNodeBuilder& builder) {
  constexpr double kThirtyDegrees = std::numbers::pi / 6;
  addPlacementAttributes(builder);
  builder.parameter(keyable(atLeast(integer("divisions", "d", 1), 1)))
      .parameter(keyable(angle("twist", "twt")))
      .parameter(keyable(real("taper", "tp", 1)))
      .parameter(keyable(distance("thickness", "tk")))
      .parameter(angle("smoothingAngle", "sma", kThirtyDegrees))
      .parameter(array(
          compound("taperCurve", "c",
                   {single("taperCurve_Position", "cp"), single("taperCurve_FloatValue", "cfv"),
                    choice("taperCurve_Interp", "ci", {"None", "Linear", "Smooth", "Spline"})})));
}

ops::ExtrudePlacement placementOf(const HistoryContext& context) {
  ops::ExtrudePlacement placement;
  placement.offset = context.real("offset");
  placement.local = {context.vec3("localTranslate"), context.vec3("localRotate"),
                     context.vec3("localScale")};
  placement.world = {context.vec3("translate"), context.vec3("rotate"), context.vec3("scale")};
  placement.pivot = context.vec3("pivot");
  placement.space = context.space();
  return placement;
}

ops::ExtrudePlacement extrudePlacement(const HistoryContext& context) {
  ops::ExtrudePlacement placement = placementOf(context);
  placement.divisions = context.integer("divisions");
  placement.thickness = context.real("thickness");
  placement.taper = context.real("taper");
  placement.twist = context.real("twist");
  placement.smoothingAngle = context.real("smoothingAngle");
  return placement;
}

}  // namespace host::nodes
