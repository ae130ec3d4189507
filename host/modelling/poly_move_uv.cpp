#include "host/modelling/declare/uv_edit.h"
#include "host/ops/uv/edit_uvs.h"
#include "host/ops/uv/uv_ids.h"

namespace host::modelling {

namespace {

Result<void> move(HistoryContext& context) {
  const auto set = uvSetOf(context);
  if (!set) return failWith(set.error());
  ops::UvTransform transform;
  transform.pivotU = context.real("pivotU");
  transform.pivotV = context.real("pivotV");
  transform.scaleU = context.real("scaleU");
  transform.scaleV = context.real("scaleV");
  transform.angle = context.real("rotationAngle");
  transform.shiftU = context.real("translateU");
  transform.shiftV = context.real("translateV");
  transform.random = context.real("random");
  transform.seed = context.integer("randomSeed");
  std::vector<UvId> uvs = context.uvs();
  if (context.names(ComponentType::Face)) {
    const std::vector<UvId> ofFaces = ops::uvsOfFaces(context.mesh, *set, context.faces());
    uvs.insert(uvs.end(), ofFaces.begin(), ofFaces.end());
    mesh::sortUnique(uvs);
  }
  const auto count = static_cast<UvId>(context.mesh.uvSet(*set).points.size());
  std::erase_if(uvs, [count](UvId uv) { return uv >= count; });
  if (!uvs.empty()) ops::transformUvs(context.mesh.editUvSet(*set), uvs, transform);
  return {};
}

/// A command turns and scales about the origin unless it says otherwise.
Result<void> setPivot(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                      const std::vector<Index>&) {
  const Plug pivot = node.plug("pivot");
  if (!args.has("pivot"))
    for (const auto& [flag, child] : {std::pair{"pivotU", 0}, std::pair{"pivotV", 1}})
      if (!args.has(flag))
        HOST_TRY(context.document.graph().set(pivot.child(child), dg::Value(0.0)));
  const std::string name = args.text("uvSetName");
  if (name.empty() || item.mesh.findUvSet(name) >= 0) return {};
  return fail(ErrorKind::NotFound, "'{}' has no UV set '{}'", item.path.transform().partialName(),
              name);
}

}  // namespace

void polyMoveUv(Declarations& add) {
  Declaration& declaration =
      add("polyMoveUV", "Moves, turns and scales UVs.")
          .node("polyMoveUV", typeCode("PMUV"))
          .nodeAlias("polyMoveFacetUV", typeCode("PMFU"))
          .takes(ComponentType::Uv)
          .parameter(keyable(numbers("translate", "t", "double2",
                                     {real("translateU", "tu"), real("translateV", "tv")})),
                     "moves them, last")
          .parameter(keyable(angle("rotationAngle", "ra")), "turns them about -pivot")
          .parameter(keyable(numbers("pivot", "pvt", "double2",
                                     {real("pivotU", "pvu", 0.5), real("pivotV", "pvv", 0.5)})),
                     "the middle of turn and scale")
          .parameter(keyable(numbers("scale", "s", "double2",
                                     {real("scaleU", "su", 1), real("scaleV", "sv", 1)})),
                     "scales them about -pivot, first")
          .parameter(keyable(limited(single("random", "ran"), -10, 10)),
                     "how much each UV's share differs")
          .parameter(integer("randomSeed", "rs"), "another number, other differences")
          .parameter(numbers("axisLen", "l", "double2",
                             {real("axisLenX", "lx", 1), real("axisLenY", "ly", 1)}),
                     "of the manipulator")
          .recordedOnly();
  addUvSetName(declaration);
  declaration.afterFlags(setPivot)
      .trial("-tu 0.5 -ra 30 -su 2 -pvu 0.5", "map")
      .trial("-t 1 2 -s 0.5 0.5 -ran 1", "map")
      .operation(move);
}

}  // namespace host::modelling
