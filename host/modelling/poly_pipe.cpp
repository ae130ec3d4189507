#include "host/modelling/declare/primitive.h"
#include "host/ops/primitives/pipe.h"

namespace host::modelling {

namespace {

Result<void> make(HistoryContext& context) {
  ops::PipeOptions options;
  options.radius = context.real("radius");
  // As of the original: the pipe reaches half of what the attribute says.
  options.height = 0.5 * context.real("height");
  options.thickness = context.real("thickness");
  options.subdivisionsAxis = context.integer("subdivisionsAxis");
  options.subdivisionsHeight = context.integer("subdivisionsHeight");
  options.subdivisionsCaps = context.integer("subdivisionsCaps");
  options.roundCap = context.boolean("roundCap");
  options.axis = context.vec3("axis");
  options.createUVs = context.integer("createUVs") != 0;
  return finishPrimitive(context, ops::makePipe(options));
}

}  // namespace

void polyPipe(Declarations& add) {
  Declaration& declaration =
      primitive(add("polyPipe", "Makes a tube with a wall."), "pPipe", {"none", "one sheet"}, 1)
          .node("polyPipe", typeCode("PPIP"), "polyPrimitive");
  declaration.parameter(keyable(distance("radius", "r", 1)), "of the outer side")
      .parameter(keyable(distance("height", "h", 2)), "twice the size along the axis")
      .parameter(keyable(distance("thickness", "t", 0.5)), "of the wall")
      .parameter(keyable(atLeast(integer("subdivisionsAxis", "sa", 20), 3)),
                 "faces around the axis")
      .alsoFlag("sx", "subdivisionsX")
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 1), 1)),
                 "faces along the axis")
      .alsoFlag("sy", "subdivisionsY")
      .parameter(keyable(atLeast(integer("subdivisionsCaps", "sc", 1), 0)),
                 "faces across the wall at each end")
      .alsoFlag("sz", "subdivisionsZ")
      .parameter(boolean("roundCap", "rcp"), "the ends bulge out")
      .parameter(boolean("texture", "tx", true), "the older word for -createUVs")
      .recordedOnly()
      .operation(make);
}

}  // namespace host::modelling
