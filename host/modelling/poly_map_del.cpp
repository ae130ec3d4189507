#include "host/modelling/declare/uv_edit.h"
#include "host/ops/uv/uv_ids.h"

namespace host::modelling {

namespace {

Result<void> remove(HistoryContext& context) {
  const auto set = uvSetOf(context);
  if (!set) return failWith(set.error());
  ops::deleteUvs(context.mesh, *set, context.faces());
  return {};
}

}  // namespace

void polyMapDel(Declarations& add) {
  Declaration& declaration = add("polyMapDel", "Takes the UVs of faces away.")
                                 .node("polyMapDel", typeCode("PMPD"))
                                 .takes(ComponentType::Face);
  addUvSetName(declaration);
  declaration.trial("", "f").operation(remove);
}

}  // namespace host::modelling
