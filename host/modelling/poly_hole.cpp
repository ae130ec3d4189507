#include <algorithm>

#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/edit_maps.h"

namespace host::modelling {

namespace {

Result<void> hide(HistoryContext& context) {
  const std::vector<FaceId> faces = context.faces();
  std::vector<std::uint8_t> flags =
      ops::flagsOf(context.mesh.invisibleFaces(), context.mesh.faceCount());
  const bool assigns = context.boolean("assignHole");
  for (const FaceId face : faces) flags[at(face)] = assigns ? 1 : 0;
  std::vector<FaceId> hidden;
  for (FaceId face = 0; face < context.mesh.faceCount(); ++face)
    if (flags[at(face)] != 0) hidden.push_back(face);
  context.mesh.setInvisibleFaces(std::move(hidden));
  return {};
}

}  // namespace

void polyHole(Declarations& add) {
  add("polyHole", "Makes holes of faces, which are there but not seen, or faces of holes.")
      .node("polyHoleFace", typeCode("PHOF"))
      .takes(ComponentType::Face)
      .parameter(boolean("assignHole", "ah", true), "on makes holes, off takes them back")
      .trial("", "f")
      .trial("-ah 0", "f")
      .operation(hide);
}

}  // namespace host::modelling
