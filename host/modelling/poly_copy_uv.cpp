#include "host/modelling/declare/uv_edit.h"
#include "host/ops/uv/edit_uvs.h"
#include "host/ops/uv/uv_ids.h"

namespace host::modelling {

namespace {

Result<void> copy(HistoryContext& context) {
  const auto from = ops::findUvSet(context.mesh, context.text("uvSetNameInput"));
  if (!from) return failWith(from.error());
  const auto to = uvSetToFill(context);
  if (!to) return failWith(to.error());
  ops::copyUvsOfFaces(context.mesh, *from, *to, context.faces());
  return {};
}

Result<void> choose(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                    const std::vector<Index>&) {
  const std::string from = args.text("uvSetNameInput");
  if (!from.empty() && item.mesh.findUvSet(from) < 0)
    return fail(ErrorKind::NotFound, "'{}' has no UV set '{}'", item.path.transform().partialName(),
                from);
  return chooseUvSet(context, args, node, item);
}

}  // namespace

void polyCopyUv(Declarations& add) {
  Declaration& declaration =
      add("polyCopyUV", "Copies UVs from one set to another.")
          .node("polyCopyUV", typeCode("PCUV"), "polyModifierUV")
          .takes(ComponentType::Face)
          .parameter(text("uvSetNameInput", "uvi"), "the set to copy from; empty: the current one");
  addNewMapFlags(declaration);
  ignoreWorldSpace(declaration);
  declaration.afterFlags(choose).trial("-cm 1 -uvs copied -uvi map1", "f").operation(copy);
}

}  // namespace host::modelling
