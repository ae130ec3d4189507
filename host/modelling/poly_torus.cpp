#include "host/modelling/declare/primitive.h"
#include "host/ops/primitives/torus.h"

namespace host::modelling {

namespace {

Result<void> make(HistoryContext& context) {
  ops::TorusOptions options;
  options.radius = context.real("radius");
  options.sectionRadius = context.real("sectionRadius");
  options.twist = context.real("twist");
  options.subdivisionsAxis = context.integer("subdivisionsAxis");
  options.subdivisionsHeight = context.integer("subdivisionsHeight");
  options.axis = context.vec3("axis");
  options.createUVs = context.boolean("createUVs") ? 1 : 0;
  return finishPrimitive(context, ops::makeTorus(options));
}

}  // namespace

void polyTorus(Declarations& add) {
  primitive(add("polyTorus", "Makes a ring."), "pTorus", {"none", "over the whole square"}, 1)
      .node("polyTorus", typeCode("PTOR"), "polyPrimitive")
      .parameter(keyable(distance("radius", "r", 1)), "from the axis to the middle of the ring")
      .parameter(keyable(distance("sectionRadius", "sr", 0.5)), "half the ring's thickness")
      .parameter(keyable(angle("twist", "tw")), "turns the sections")
      .parameter(keyable(atLeast(integer("subdivisionsAxis", "sa", 20), 3)),
                 "faces around the axis")
      .alsoFlag("sx", "subdivisionsX")
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 20), 3)),
                 "faces around a section")
      .alsoFlag("sy", "subdivisionsY")
      .parameter(boolean("texture", "tx", true), "the older word for -createUVs")
      .recordedOnly()
      .operation(make);
}

}  // namespace host::modelling
