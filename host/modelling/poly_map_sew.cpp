#include "host/base/messages.h"
#include "host/modelling/declare/uv_edit.h"
#include "host/ops/uv/sew_uvs.h"

namespace host::modelling {

namespace {

/// Sews, and says how many borders stay open; once, not at every evaluation that finds as many.
void sewAndTell(HistoryContext& context, int set, const ops::SewUvsOptions& options) {
  const Index open = ops::sewUvs(context.mesh, set, context.edges(), options).open;
  const auto told = std::static_pointer_cast<const Index>(context.plan);
  if (open > 0 && (!told || *told != open))
    postMessage(MessageKind::Warning,
                fmt::format("{}: {} {} open, because the map could not lie flat without.",
                            context.node().name(), open, open == 1 ? "edge stays" : "edges stay"));
  context.plan = std::make_shared<const Index>(open);
}

Result<void> sew(HistoryContext& context) {
  const auto set = uvSetOf(context);
  if (!set) return failWith(set.error());
  sewAndTell(context, *set, {});
  return {};
}

Result<void> moveAndSew(HistoryContext& context) {
  const auto set = uvSetOf(context);
  if (!set) return failWith(set.error());
  ops::SewUvsOptions options;
  options.moves = true;
  if (context.boolean("limitPieceSize")) options.pieceFaceLimit = context.integer("numberFaces");
  sewAndTell(context, *set, options);
  return {};
}

}  // namespace

void polyMapSew(Declarations& add) {
  Declaration& declaration =
      add("polyMapSew", "Sews the map along edges; sides meet in the middle.")
          .node("polyMapSew", typeCode("PMPS"))
          .takes(ComponentType::Edge);
  addUvSetName(declaration);
  declaration.trial("", "e").operation(sew);

  Declaration& moving =
      add("polyMapSewMove", "Moves the smaller shell to the larger one and sews them along edges.")
          .node("polyMapSewMove", typeCode("PMSM"), "polyModifierUV")
          .takes(ComponentType::Edge)
          .parameter(boolean("limitPieceSize", "lps"), "larger pieces than -numberFaces stay")
          .parameter(integer("numberFaces", "nf", 10), "faces of the largest piece that moves");
  ignoreWorldSpace(moving);
  moving.trial("", "e").trial("-lps 1 -nf 2", "e").operation(moveAndSew);
}

}  // namespace host::modelling
