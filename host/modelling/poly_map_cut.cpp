#include "host/modelling/declare/uv_edit.h"
#include "host/ops/uv/cut_uvs.h"

namespace host::modelling {

namespace {

Result<void> cut(HistoryContext& context) {
  const auto set = uvSetOf(context);
  if (!set) return failWith(set.error());
  ops::cutUvs(context.mesh, *set, context.edges(), {.gap = context.real("moveRatio")});
  return {};
}

}  // namespace

void polyMapCut(Declarations& add) {
  Declaration& declaration = add("polyMapCut", "Cuts the map along edges.")
                                 .node("polyMapCut", typeCode("PMPC"))
                                 .takes(ComponentType::Edge);
  addUvSetName(declaration);
  declaration
      .parameter(keyable(single("moveRatio", "mvr")),
                 "how far the sides part, as a share of the way to their neighbours")
      .flag("mvr", "moveratio")
      .trial("", "e")
      .trial("-mvr 0.2", "e")
      .operation(cut);
}

}  // namespace host::modelling
