#include <numbers>

#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/quadrangulate.h"

namespace host::modelling {

namespace {

/// What the listed triangles became, ascending.
std::vector<FaceId> followed(const std::vector<FaceId>& listed, const std::vector<FaceId>& map) {
  std::vector<FaceId> left;
  for (const FaceId face : listed)
    if (const FaceId now = map[at(face)]; now != kNone) left.push_back(now);
  return ops::sortedIds(left);
}

Result<void> join(HistoryContext& context) {
  ops::QuadrangulateOptions options;
  options.angle = context.real("angle");
  options.keepGroupBorder = context.boolean("keepGroupBorder");
  options.keepTextureBorders = context.boolean("keepTextureBorders");
  options.keepHardEdges = context.boolean("keepHardEdges");
  options.space = context.space();
  const std::vector<FaceId> faces = context.faces();
  const auto made = ops::quadrangulate(context.mesh, faces, options);
  if (!made) return failWith(made.error());
  context.makes(followed(faces, made->maps.faces));
  return {};
}

}  // namespace

void polyQuad(Declarations& add) {
  add("polyQuad", "Makes quads of pairs of triangles.")
      .node("polyQuad", typeCode("PQUA"), "polyModifierWorld")
      .takes(ComponentType::Face)
      .leaves(Leaves::Made)
      .parameter(keyable(angle("angle", "a", std::numbers::pi / 6)),
                 "triangles that bend more stay apart")
      .parameter(boolean("keepGroupBorder", "kgb", true), "the border of what is named stays")
      .parameter(boolean("keepTextureBorders", "ktb", true), "UV seams stay")
      .parameter(boolean("keepHardEdges", "khe", true), "hard edges stay")
      .trial("", "f")
      .trial("-a 80 -kgb 0 -ktb 0 -khe 0 -ws 1", "f")
      .operation(join);
}

}  // namespace host::modelling
