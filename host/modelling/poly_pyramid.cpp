#include "host/modelling/declare/primitive.h"
#include "host/ops/primitives/cone.h"

namespace host::modelling {

namespace {

Result<void> make(HistoryContext& context) {
  ops::PyramidOptions options;
  options.sideLength = context.real("sideLength");
  options.sides = context.integer("numberOfSides");
  options.subdivisionsHeight = context.integer("subdivisionsHeight");
  options.subdivisionsCap = context.integer("subdivisionsCaps");
  options.axis = context.vec3("axis");
  options.createUVs = context.integer("createUVs");
  return finishPrimitive(context, ops::makePyramid(options));
}

}  // namespace

void polyPyramid(Declarations& add) {
  primitive(add("polyPyramid", "Makes a pyramid."), "pPyramid",
            {"none", "unfolded", "unfolded and fitted", "unfolded in proportion"}, 2)
      .commandSets(3)
      .node("polyPyramid", typeCode("PPYR"), "polyPrimitive")
      .parameter(keyable(distance("sideLength", "w", 1)), "of the base's sides")
      .parameter(dg::makeEnum("numberOfSides", "ns", {{"Three", 3}, {"Four", 4}, {"Five", 5}}, 4),
                 "sides of the base: 3, 4 or 5")
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 1), 1)),
                 "faces along the axis")
      .alsoFlag("sy", "subdivisionsY")
      .parameter(keyable(atLeast(integer("subdivisionsCaps", "sc"), 0)),
                 "rings of the base; 0 makes it one face")
      .alsoFlag("sz", "subdivisionsZ")
      .parameter(boolean("texture", "tx", true), "the older word for -createUVs")
      .recordedOnly()
      .operation(make);
}

}  // namespace host::modelling
