#include "host/mesh/normals.h"
#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/collapse.h"

namespace host::modelling {

namespace {

Result<void> collapse(HistoryContext& context) {
  std::vector<FaceId> faces = context.faces();
  if (context.boolean("useAreaThreshold")) {
    const double limit = context.real("areaThreshold");
    std::erase_if(faces, [&](FaceId face) { return mesh::faceArea(context.mesh, face) > limit; });
  }
  const auto done = ops::collapseFaces(context.mesh, faces);
  return done ? Result<void>() : failWith(done.error());
}

}  // namespace

void polyCollapseFacet(Declarations& add) {
  add("polyCollapseFacet", "Brings each connected patch of faces to one point.")
      .node("polyCollapseF", typeCode("PCOF"))
      .takes(ComponentType::Face)
      .leaves(Leaves::Nothing)
      .parameter(boolean("useAreaThreshold", "uat"), "leave faces above -areaThreshold alone")
      .parameter(real("areaThreshold", "at", 0.1), "object space, square cm")
      .trial("", "f")
      .trial("-uat 1 -at 0.3", "f")
      .operation(collapse);
}

}  // namespace host::modelling
