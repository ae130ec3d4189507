#include "host/modelling/declare/primitive.h"
#include "host/ops/primitives/cone.h"

namespace host::modelling {

namespace {

Result<void> make(HistoryContext& context) {
  const auto options = aroundAxis(context, &ops::ConeOptions::subdivisionsCap, "subdivisionsCap");
  return finishPrimitive(context, ops::makeCone(options));
}

}  // namespace

void polyCone(Declarations& add) {
  Declaration& declaration =
      primitive(add("polyCone", "Makes a cone."), "pCone",
                {"none", "unfolded", "unfolded and fitted", "unfolded in proportion"}, 2)
          .commandSets(3)
          .node("polyCone", typeCode("PCON"), "polyPrimitive");
  addAroundAxis(declaration, "of the base")
      .parameter(keyable(atLeast(integer("subdivisionsCap", "sc"), 0)),
                 "rings of the base; 0 makes it one face")
      .alsoFlag("sz", "subdivisionsZ")
      .parameter(boolean("roundCap", "rcp"), "the base bulges out")
      .parameter(boolean("texture", "tx", true), "the older word for -createUVs")
      .recordedOnly()
      .operation(make);
}

}  // namespace host::modelling
