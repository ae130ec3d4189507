#include "host/modelling/declare/primitive.h"
#include "host/ops/primitives/cone.h"

namespace host::modelling {

namespace {

Result<void> make(HistoryContext& context) {
  ops::ConeOptions options;
  options.radius = context.real("radius");
  options.height = context.real("height");
  options.subdivisionsAxis = context.integer("subdivisionsAxis");
  options.subdivisionsHeight = context.integer("subdivisionsHeight");
  options.subdivisionsCap = context.integer("subdivisionsCap");
  options.roundCap = context.boolean("roundCap");
  options.axis = context.vec3("axis");
  options.createUVs = context.integer("createUVs");
  return finishPrimitive(context, ops::makeCone(options));
}

}  // namespace

void polyCone(Declarations& add) {
  primitive(add("polyCone", "Makes a cone."), "pCone",
            {"none", "unfolded", "unfolded and fitted", "unfolded in proportion"}, 2)
      .commandSets(3)
      .node("polyCone", typeCode("PCON"), "polyPrimitive")
      .parameter(keyable(distance("radius", "r", 1)), "of the base")
      .parameter(keyable(distance("height", "h", 2)), "size along the axis")
      .parameter(keyable(atLeast(integer("subdivisionsAxis", "sa", 20), 3)),
                 "faces around the axis")
      .alsoFlag("sx", "subdivisionsX")
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 1), 1)),
                 "faces along the axis")
      .alsoFlag("sy", "subdivisionsY")
      .parameter(keyable(atLeast(integer("subdivisionsCap", "sc"), 0)),
                 "rings of the base; 0 makes it one face")
      .alsoFlag("sz", "subdivisionsZ")
      .parameter(boolean("roundCap", "rcp"), "the base bulges out")
      .parameter(boolean("texture", "tx", true), "the older word for -createUVs")
      .recordedOnly()
      .operation(make);
}

}  // namespace host::modelling
