#include "host/modelling/declare/uv_edit.h"
#include "host/ops/uv/straighten_uvs.h"

namespace host::modelling {

namespace {

Result<void> straighten(HistoryContext& context) {
  const auto set = uvSetOf(context);
  if (!set) return failWith(set.error());
  ops::StraightenUvsOptions options;
  options.curvature = context.real("curvature");
  options.preserveLength = context.real("preserveLength");
  options.blendOriginal = context.real("blendOriginal");
  options.gapTolerance = context.integer("gapTolerance");
  std::vector<UvId> uvs = context.uvs();
  const auto count = static_cast<UvId>(context.mesh.uvSet(*set).points.size());
  std::erase_if(uvs, [count](UvId uv) { return uv >= count; });
  const auto moved = ops::straightenUvBorders(context.mesh, *set, uvs, options);
  return moved ? Result<void>() : failWith(moved.error());
}

}  // namespace

void polyStraightenUvBorder(Declarations& add) {
  Declaration& declaration =
      add("polyStraightenUVBorder", "Lays parts of the map's borders on lines or arcs.")
          .node("polyStraightenUVBorder", typeCode("PSUB"), "polyModifierUV")
          .takes(ComponentType::Uv)
          .parameter(single("curvature", "c"), "0 straight, 1 a half circle outwards, -1 inwards")
          .parameter(single("preserveLength", "pl", 1),
                     "1 keeps the spacing of the UVs, 0 evens it")
          .parameter(single("blendOriginal", "bo"), "1 leaves the UVs where they were")
          .parameter(integer("gapTolerance", "gt", 5), "so many UVs not named are taken along");
  ignoreWorldSpace(declaration);
  declaration.trial("", "map").trial("-c 0.5 -pl 0 -bo 0.2 -gt 0", "map").operation(straighten);
}

}  // namespace host::modelling
