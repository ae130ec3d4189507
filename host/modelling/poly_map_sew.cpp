#include "host/base/messages.h"
#include "host/modelling/declare/uv_edit.h"
#include "host/ops/uv/sew_uvs.h"

namespace host::modelling {

namespace {

void warn(const HistoryContext& context, Index edges, std::string_view why) {
  if (edges > 0)
    postMessage(MessageKind::Warning,
                fmt::format("{}: {} {} open, because {}.", context.node().name(), edges,
                            edges == 1 ? "edge stays" : "edges stay", why));
}

/// Sews, and says how many borders stay open and why; once, not at every evaluation that finds as
/// many. That -limitPieceSize left some is no news to whoever asked for it.
void sewAndTell(HistoryContext& context, int set, const ops::SewUvsOptions& options) {
  const ops::SewUvsResult done = ops::sewUvs(context.mesh, set, context.edges(), options);
  const auto told = std::static_pointer_cast<const Index>(context.plan);
  if (!told || *told != done.open) {
    warn(context, done.open - done.limited - done.unjoinable, "the map could not lie flat without");
    warn(context, done.unjoinable,
         "more than two faces meet there, or faces that are wound against each other");
  }
  context.plan = std::make_shared<const Index>(done.open);
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
