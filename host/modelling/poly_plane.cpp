#include "host/modelling/declare/primitive.h"
#include "host/ops/primitives/plane.h"

namespace host::modelling {

namespace {

Result<void> make(HistoryContext& context) {
  ops::PlaneOptions options;
  options.width = context.real("width");
  options.height = context.real("height");
  options.subdivisionsWidth = context.integer("subdivisionsWidth");
  options.subdivisionsHeight = context.integer("subdivisionsHeight");
  options.axis = context.vec3("axis");
  options.createUVs = context.integer("createUVs");
  return finishPrimitive(context, ops::makePlane(options));
}

}  // namespace

void polyPlane(Declarations& add) {
  primitive(add("polyPlane", "Makes a grid of faces."), "pPlane",
            {"none", "over the whole square", "in proportion"}, 1)
      .commandSets(2)
      .node("polyPlane", typeCode("PMES"), "polyPrimitive")
      .parameter(keyable(distance("width", "w", 1)), "size along x")
      .parameter(keyable(distance("height", "h", 1)), "size along z")
      .parameter(keyable(atLeast(integer("subdivisionsWidth", "sw", 10), 1)), "faces along x")
      .alsoFlag("sx", "subdivisionsX")
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 10), 1)), "faces along z")
      .alsoFlag("sy", "subdivisionsY")
      .parameter(shortInteger("texture", "tx", 1), "the older word for -createUVs")
      .recordedOnly()
      .operation(make);
}

}  // namespace host::modelling
