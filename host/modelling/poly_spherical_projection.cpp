#include "host/modelling/declare/uv_edit.h"

namespace host::modelling {

void polySphericalProjection(Declarations& add) {
  addRoundProjection(
      add("polySphericalProjection", "Unrolls faces from a sphere around them.")
          .node("polySphProj", typeCode("PSPJ"), "polyModifierWorld"),
      ops::UvProjectionShape::Spherical,
      {real("projectionHorizontalSweep", "phs", 180), real("projectionVerticalSweep", "pvs", 90)},
      1, "of the sphere as it is shown");
}

}  // namespace host::modelling
