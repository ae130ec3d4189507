#include "host/modelling/declare/primitive.h"
#include "host/ops/primitives/cylinder.h"

namespace host::modelling {

namespace {

Result<void> make(HistoryContext& context) {
  ops::CylinderOptions options;
  options.radius = context.real("radius");
  options.height = context.real("height");
  options.subdivisionsAxis = context.integer("subdivisionsAxis");
  options.subdivisionsHeight = context.integer("subdivisionsHeight");
  options.subdivisionsCaps = context.integer("subdivisionsCaps");
  options.roundCap = context.boolean("roundCap");
  options.roundCapHeightCompensate = context.boolean("roundCapHeightCompensation");
  options.axis = context.vec3("axis");
  options.createUVs = context.integer("createUVs");
  return finishPrimitive(context, ops::makeCylinder(options));
}

}  // namespace

void polyCylinder(Declarations& add) {
  primitive(add("polyCylinder", "Makes a tube with closed ends."), "pCylinder",
            {"none", "unfolded", "unfolded and fitted", "unfolded in proportion"}, 2)
      .commandSets(3)
      .node("polyCylinder", typeCode("PCYL"), "polyPrimitive")
      .parameter(keyable(distance("radius", "r", 1)), "from the axis to the side")
      .parameter(keyable(distance("height", "h", 2)), "size along the axis")
      .parameter(keyable(atLeast(integer("subdivisionsAxis", "sa", 20), 3)),
                 "faces around the axis")
      .alsoFlag("sx", "subdivisionsX")
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 1), 1)),
                 "faces along the axis")
      .alsoFlag("sy", "subdivisionsY")
      .parameter(keyable(atLeast(integer("subdivisionsCaps", "sc"), 0)),
                 "rings of each end; 0 makes it one face")
      .commandSets(1)
      .alsoFlag("sz", "subdivisionsZ")
      .parameter(boolean("roundCap", "rcp"), "the ends bulge out")
      .parameter(boolean("roundCapHeightCompensation", "rch"), "round ends count as height")
      .parameter(shortInteger("texture", "tx", 2), "the older word for -createUVs")
      .recordedOnly()
      .operation(make);
}

}  // namespace host::modelling
