#include "host/modelling/declare/uv_edit.h"

namespace host::modelling {

namespace {

Result<void> project(HistoryContext& context) {
  const auto set = uvSetToFill(context);
  if (!set) return failWith(set.error());
  return ops::projectUvs(context.mesh, *set, context.faces(),
                         projectionOf(context, ops::UvProjectionShape::Planar));
}

Result<void> fit(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                 const std::vector<Index>& faces) {
  if (args.has("projectionHorizontalSweep"))
    return fail(
        "-projectionHorizontalSweep is for cylinders and spheres: a plane's size across is "
        "-projectionWidth");
  HOST_TRY(chooseUvSet(context, args, node, item));
  return fitProjection(context, args, node, item, faces, ops::UvProjectionShape::Planar);
}

}  // namespace

void polyPlanarProjection(Declarations& add) {
  Declaration& declaration =
      add("polyPlanarProjection", "Lays faces flat in the map as a plane sees them.")
          .node("polyPlanarProj", typeCode("PPPJ"), "polyModifierWorld")
          .takes(ComponentType::Face);
  addProjection(declaration, {real("projectionWidth", "pw", 1), real("projectionHeight", "ph", 1)});
  addUvSetName(declaration);
  ExtraFlag sweep{"phs", "projectionHorizontalSweep", {ArgType::Angle}, kCreate};
  sweep.meaning = "refused: a plane has no sweep but a width";
  ExtraFlag seam{"sc", "seamCorrect", {ArgType::Bool}, kCreate};
  seam.meaning = "changes nothing: a plane has no seam";
  declaration.extraFlag(keepImageRatio("one size across and up"))
      .extraFlag(sweep)
      .extraFlag(seam)
      .parameter(real("radius", "r", 1), "of other projections")
      .noFlag()
      .recordedOnly()
      .afterFlags(fit)
      .trial("-md y", "f")
      .trial("-md b -kir -ws 1", "f")
      .trial("-md x -kir off -sc 1", "f")
      .trial("-ro 10 20 30 -pc 1 2 3 -ps 2 3 -is 0.5 2 -ra 30 -cm 1 -uvs other", "f")
      .operation(project);
}

}  // namespace host::modelling
