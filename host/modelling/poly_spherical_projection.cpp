#include "host/modelling/declare/uv_edit.h"

namespace host::modelling {

namespace {

constexpr auto kShape = ops::UvProjectionShape::Spherical;

Result<void> project(HistoryContext& context) {
  const auto set = uvSetToFill(context);
  if (!set) return failWith(set.error());
  return ops::projectUvs(context.mesh, *set, context.faces(), projectionOf(context, kShape));
}

Result<void> fit(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                 const std::vector<Index>& faces) {
  HOST_TRY(chooseUvSet(context, args, node, item));
  return fitProjection(context, args, node, item, faces, kShape);
}

}  // namespace

void polySphericalProjection(Declarations& add) {
  Declaration& declaration =
      add("polySphericalProjection", "Unrolls faces from a sphere around them.")
          .node("polySphProj", typeCode("PSPJ"), "polyModifierWorld")
          .takes(ComponentType::Face);
  addProjection(declaration, {real("projectionHorizontalSweep", "phs", 180),
                              real("projectionVerticalSweep", "pvs", 90)});
  addUvSetName(declaration);
  declaration.parameter(boolean("seamCorrect", "sc"), "faces across the seam go on beyond it")
      .parameter(real("radius", "r", 1), "of the sphere as it is shown")
      .recordedOnly()
      .parameter(boolean("useOldPolyProjection", "uopp"), "of older files")
      .noFlag()
      .recordedOnly()
      .afterFlags(fit)
      .trial("", "f")
      .trial("-sc 1 -ps 360 2 -rx 30 -ws 1", "f")
      .operation(project);
}

}  // namespace host::modelling
