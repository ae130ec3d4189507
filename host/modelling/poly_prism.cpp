#include "host/modelling/declare/primitive.h"
#include "host/ops/primitives/cylinder.h"

namespace host::modelling {

namespace {

Result<void> make(HistoryContext& context) {
  ops::PrismOptions options;
  options.length = context.real("length");
  options.sideLength = context.real("sideLength");
  options.sides = context.integer("numberOfSides");
  options.subdivisionsHeight = context.integer("subdivisionsHeight");
  options.subdivisionsCaps = context.integer("subdivisionsCaps");
  options.axis = context.vec3("axis");
  options.createUVs = context.integer("createUVs");
  return finishPrimitive(context, ops::makePrism(options));
}

}  // namespace

void polyPrism(Declarations& add) {
  primitive(add("polyPrism", "Makes a prism over a regular polygon."), "pPrism",
            {"none", "unfolded", "unfolded and fitted", "unfolded in proportion"}, 2)
      .commandSets(3)
      .node("polyPrism", typeCode("PPRI"), "polyPrimitive")
      .parameter(keyable(distance("length", "l", 2)), "size along the axis")
      .parameter(keyable(distance("sideLength", "w", 1)), "of the polygon's sides")
      .parameter(keyable(atLeast(integer("numberOfSides", "ns", 3), 3)), "sides of the polygon")
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 1), 1)),
                 "faces along the axis")
      .alsoFlag("sy", "subdivisionsY")
      .parameter(keyable(atLeast(integer("subdivisionsCaps", "sc"), 0)),
                 "rings of each end; 0 makes it one face")
      .alsoFlag("sz", "subdivisionsZ")
      .parameter(shortInteger("texture", "tx", 2), "the older word for -createUVs")
      .recordedOnly()
      .operation(make);
}

}  // namespace host::modelling
