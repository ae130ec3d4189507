#include "host/modelling/declare/uv_edit.h"
#include "host/ops/uv/edit_uvs.h"

namespace host::modelling {

namespace {

Result<void> merge(HistoryContext& context) {
  const auto set = uvSetOf(context);
  if (!set) return failWith(set.error());
  std::vector<UvId> uvs = context.uvs();
  const auto count = static_cast<UvId>(context.mesh.uvSet(*set).points.size());
  std::erase_if(uvs, [count](UvId uv) { return uv >= count; });
  ops::mergeUvs(context.mesh, *set, uvs, context.real("distance"));
  return {};
}

}  // namespace

void polyMergeUv(Declarations& add) {
  Declaration& declaration =
      add("polyMergeUV", "Makes one UV of those of a vertex that lie within a distance.")
          .node("polyMergeUV", typeCode("PMGU"), "polyModifierUV")
          .takes(ComponentType::Uv)
          .leaves(Leaves::Nothing)
          .parameter(keyable(atLeast(single("distance", "d"), 0)),
                     "no farther than this, in the map");
  ignoreWorldSpace(declaration);
  declaration.trial("-d 0.1", "map").trial("-d 10", "map").operation(merge);
}

}  // namespace host::modelling
