#include "host/modelling/declare/uv_edit.h"
#include "host/ops/uv/edit_uvs.h"

namespace host::modelling {

namespace {

Result<void> normalize(HistoryContext& context) {
  const auto set = uvSetToChange(context);
  if (!set) return failWith(set.error());
  const auto type = context.choice("normalizeType", 2);
  if (!type) return failWith(type.error());
  const auto direction = context.choice("normalizeDirection", 3);
  if (!direction) return failWith(direction.error());
  ops::NormalizeUvsOptions options;
  options.isCollective = *type == 1;
  options.keepsRatio = context.boolean("preserveAspectRatio");
  options.centersOnTile = context.boolean("centerOnTile");
  options.direction = static_cast<ops::UvDirection>(*direction);
  ops::normalizeUvs(context.mesh, *set, context.faces(), options);
  return {};
}

Result<void> flip(HistoryContext& context) {
  const auto set = uvSetToChange(context);
  if (!set) return failWith(set.error());
  const auto type = context.choice("flipType", 2);
  if (!type) return failWith(type.error());
  ops::flipUvs(context.mesh, *set, context.faces(),
               {.isVertical = *type == 1, .isLocal = context.boolean("local")});
  return {};
}

/// With -createNewMap the named set, a copy of the one at hand, is what is changed.
Result<void> choose(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                    const std::vector<Index>&) {
  return chooseUvSet(context, args, node, item);
}

}  // namespace

void polyNormalizeUv(Declarations& add) {
  Declaration& normalizing =
      add("polyNormalizeUV", "Scales and moves UVs into a unit square.")
          .node("polyNormalizeUV", typeCode("PNUV"), "polyModifierUV")
          .takes(ComponentType::Face)
          .parameter(choice("normalizeType", "nt", {"Separately", "Collectively"}, 1),
                     "0 each face alone, with UVs of its own, 1 all as one")
          .parameter(boolean("preserveAspectRatio", "pa", true), "one scale for both directions")
          .parameter(boolean("centerOnTile", "cot"), "in the tile that the middle lies in")
          .parameter(choice("normalizeDirection", "nd", {"UV", "U", "V"}), "0 both, 1 u, 2 v");
  addNewMapFlags(normalizing);
  ignoreWorldSpace(normalizing);
  normalizing.afterFlags(choose).trial("", "f").trial("-nt 0 -pa 0", "f").operation(normalize);
  Declaration& flipping =
      add("polyFlipUV", "Mirrors UVs.")
          .node("polyFlipUV", typeCode("PFUV"), "polyModifierUV")
          .takes(ComponentType::Face)
          .parameter(choice("flipType", "ft", {"Horizontal", "Vertical"}), "0 u, 1 v")
          .parameter(boolean("local", "l", true), "within the faces' own box, not the unit square");
  addNewMapFlags(flipping);
  ignoreWorldSpace(flipping);
  flipping.afterFlags(choose).trial("", "f").trial("-ft 1 -l 0", "f").operation(flip);
}

}  // namespace host::modelling
