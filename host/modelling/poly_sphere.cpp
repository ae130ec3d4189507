#include "host/modelling/declare/primitive.h"
#include "host/ops/primitives/sphere.h"

namespace host::modelling {

namespace {

Result<void> make(HistoryContext& context) {
  ops::SphereOptions options;
  options.radius = context.real("radius");
  options.subdivisionsAxis = context.integer("subdivisionsAxis");
  options.subdivisionsHeight = context.integer("subdivisionsHeight");
  options.axis = context.vec3("axis");
  options.createUVs = context.integer("createUVs");
  return finishPrimitive(context, ops::makeSphere(options));
}

}  // namespace

void polySphere(Declarations& add) {
  primitive(add("polySphere", "Makes a ball."), "pSphere",
            {"none", "pinched at the poles", "saw tooth at the poles"}, 2)
      .commandSets(2)
      .node("polySphere", typeCode("PSPH"), "polyPrimitive")
      .parameter(keyable(distance("radius", "r", 1)), "from the centre to the vertices")
      .parameter(keyable(atLeast(integer("subdivisionsAxis", "sa", 20), 3)),
                 "faces around the axis")
      .alsoFlag("sx", "subdivisionsX")
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 20), 3)),
                 "faces from pole to pole")
      .alsoFlag("sy", "subdivisionsY")
      .parameter(shortInteger("texture", "tx", 1), "the older word for -createUVs")
      .recordedOnly()
      .operation(make);
}

}  // namespace host::modelling
