#include "host/modelling/declare/uv_edit.h"

namespace host::modelling {

void polyCylindricalProjection(Declarations& add) {
  addRoundProjection(
      add("polyCylindricalProjection", "Unrolls faces from a cylinder around them.")
          .node("polyCylProj", typeCode("PCPJ"), "polyModifierWorld"),
      ops::UvProjectionShape::Cylindrical,
      {real("projectionHorizontalSweep", "phs", 180), real("projectionHeight", "ph", 1)}, 10,
      "of the cylinder as it is shown");
}

}  // namespace host::modelling
