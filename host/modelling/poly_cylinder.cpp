#include "host/modelling/declare/primitive.h"
#include "host/ops/primitives/cylinder.h"

namespace host::modelling {

namespace {

Result<void> make(HistoryContext& context) {
  auto options = aroundAxis(context, &ops::CylinderOptions::subdivisionsCaps, "subdivisionsCaps");
  options.roundCapHeightCompensate = context.boolean("roundCapHeightCompensation");
  return finishPrimitive(context, ops::makeCylinder(options));
}

}  // namespace

void polyCylinder(Declarations& add) {
  Declaration& declaration =
      primitive(add("polyCylinder", "Makes a tube with closed ends."), "pCylinder",
                {"none", "unfolded", "unfolded and fitted", "unfolded in proportion"}, 2)
          .commandSets(3)
          .node("polyCylinder", typeCode("PCYL"), "polyPrimitive");
  addAroundAxis(declaration, "from the axis to the side")
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
