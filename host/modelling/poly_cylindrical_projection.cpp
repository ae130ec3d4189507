#include "host/modelling/declare/uv_edit.h"

namespace host::modelling {

namespace {

constexpr auto kShape = ops::UvProjectionShape::Cylindrical;

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

void polyCylindricalProjection(Declarations& add) {
  Declaration& declaration =
      add("polyCylindricalProjection", "Unrolls faces from a cylinder around them.")
          .node("polyCylProj", typeCode("PCPJ"), "polyModifierWorld")
          .takes(ComponentType::Face);
  addProjection(declaration,
                {real("projectionHorizontalSweep", "phs", 180), real("projectionHeight", "ph", 1)});
  addUvSetName(declaration);
  declaration.parameter(boolean("seamCorrect", "sc"), "faces across the seam go on beyond it")
      .parameter(real("radius", "r", 10), "of the cylinder as it is shown")
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
