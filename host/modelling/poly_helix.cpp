#include "host/modelling/declare/primitive.h"
#include "host/ops/primitives/helix.h"

namespace host::modelling {

namespace {

Result<void> make(HistoryContext& context) {
  ops::HelixOptions options;
  options.coils = context.real("coils");
  options.height = context.real("height");
  options.width = context.real("width");
  options.radius = context.real("radius");
  options.isCounterClockwise = context.integer("direction") != 0;
  options.subdivisionsAxis = context.integer("subdivisionsAxis");
  options.subdivisionsCoil = context.integer("subdivisionsCoil");
  options.subdivisionsCaps = context.integer("subdivisionsCaps");
  options.roundCap = context.boolean("roundCap");
  options.axis = context.vec3("axis");
  options.createUVs = context.integer("createUVs");
  return finishPrimitive(context, ops::makeHelix(options));
}

}  // namespace

void polyHelix(Declarations& add) {
  primitive(add("polyHelix", "Makes a tube along a helix."), "pHelix",
            {"none", "unrolled", "unrolled and fitted", "unrolled in proportion"}, 2)
      .commandSets(3)
      .node("polyHelix", typeCode("PHLX"), "polyPrimitive")
      .parameter(keyable(real("coils", "c", 3)), "turns, parts of one too")
      .parameter(keyable(distance("height", "h", 2)), "of the tube's middle line along the axis")
      .parameter(keyable(distance("width", "w", 2)), "across the tube's middle line")
      .parameter(keyable(distance("radius", "r", 0.4)), "of the tube")
      .parameter(choice("direction", "d", {"clockwise", "counterclockwise"}, 1),
                 "which way round it goes up: 0 clockwise, 1 counterclockwise")
      .parameter(keyable(atLeast(integer("subdivisionsAxis", "sa", 8), 3)), "faces around the tube")
      .alsoFlag("sx", "subdivisionsX")
      .parameter(keyable(atLeast(integer("subdivisionsCoil", "sco", 50), 1)),
                 "faces along each turn")
      .alsoFlag("sy", "subdivisionsY")
      .parameter(keyable(atLeast(integer("subdivisionsCaps", "sc"), 0)),
                 "rings of each end; 0 makes it one face")
      .alsoFlag("sz", "subdivisionsZ")
      .parameter(boolean("roundCap", "rcp"), "the ends bulge out")
      .parameter(shortInteger("texture", "tx", 2), "the older word for -createUVs")
      .recordedOnly()
      .parameter(hidden(boolean("useOldInitBehaviour", "oib")), "of older files")
      .noFlag()
      .recordedOnly()
      .operation(make);
}

}  // namespace host::modelling
