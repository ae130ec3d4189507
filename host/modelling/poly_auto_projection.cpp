#include "host/math/euler.h"
#include "host/modelling/declare/uv_edit.h"
#include "host/ops/uv/auto_project_uvs.h"

namespace host::modelling {

namespace {

/// From the object to the planes: what the manipulator's scale, turn and place do, undone.
Result<math::Matrix4> toPlanes(const HistoryContext& context) {
  const math::Vec3 pivot = context.vec3("pivot");
  const math::Matrix4 planes =
      math::Matrix4::translation(-pivot) * math::Matrix4::scaling(context.vec3("scale")) *
      math::eulerToMatrix(context.vec3("rotate")) * math::Matrix4::translation(pivot) *
      math::Matrix4::translation(context.vec3("translate"));
  const auto back = math::inverse(planes);
  if (!back) return fail("a scale of 0 leaves nothing to project");
  return context.space() * *back;
}

Result<void> project(HistoryContext& context) {
  ops::AutoProjectUvsOptions options;
  const auto layout = context.choice("layout", 3);
  if (!layout) return failWith(layout.error());
  const auto scale = context.choice("scaleMode", 3);
  if (!scale) return failWith(scale.error());
  const auto planes = toPlanes(context);
  if (!planes) return failWith(planes.error());
  options.planes = context.integer("planes");
  options.toProjection = *planes;
  options.projectsBothWays = context.boolean("projectBothDirections");
  options.makesFewerPieces = context.integer("optimize") != 0;
  options.splitsOverlaps = !context.boolean("skipIntersect");
  options.layout = static_cast<ops::AutoProjectUvsOptions::Layout>(*layout);
  options.scale = static_cast<ops::AutoProjectUvsOptions::Scale>(*scale);
  const auto method = context.choice("layoutMethod", 2);
  if (!method) return failWith(method.error());
  options.packsShapes = *method == 1 || context.boolean("denseLayout");
  options.spacing = context.real("percentageSpace") / 100;
  const auto set = uvSetToFill(context);
  if (!set) return failWith(set.error());
  return ops::autoProjectUvs(context.mesh, *set, context.faces(), options);
}

Result<void> choose(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                    const std::vector<Index>&) {
  return chooseUvSet(context, args, node, item);
}

}  // namespace

void polyAutoProjection(Declarations& add) {
  Declaration& declaration =
      add("polyAutoProjection",
          "Projects each face along the direction that sees it best, and lays the pieces out.")
          .node("polyAutoProj", typeCode("PAPJ"), "polyModifierUV")
          .takes(ComponentType::Face);
  declaration.parameter(boolean("worldSpace", "ws"), "the planes are those of the world")
      .parameter(triple("translate", "t", AttributeType::Distance), "moves the planes")
      .parameter(triple("rotate", "ro", AttributeType::Angle, {}, "r"), "turns the planes")
      .flag("ro", "rotate", "r")
      .parameter(triple("scale", "s", AttributeType::Double, {1, 1, 1}),
                 "stretches the space that the planes look at")
      .parameter(triple("pivot", "pvt", AttributeType::Distance, {}, "pv"), "of turn and scale")
      .parameter(integer("planes", "p", 6), "how many directions, 3 to 12")
      .parameter(choice("optimize", "o", {"Best plane", "Fewer pieces"}, 1),
                 "1 lets small islands join the faces around them")
      .parameter(choice("layoutMethod", "lm", {"Block stacking", "Shape stacking"}),
                 "0 puts the pieces' boxes into the square, 1 their outlines")
      .parameter(boolean("skipIntersect", "si"), "on lets pieces lie over themselves")
      .parameter(choice("layout", "l", {"None", "Along U", "Into square"}, 2),
                 "0 pieces stay where they are seen, 1 in a row, 2 in the unit square")
      .parameter(single("percentageSpace", "ps"), "between the pieces, percent of the square")
      .parameter(choice("scaleMode", "sc", {"None", "Uniform", "Stretch to square"}, 1),
                 "0 as large as they are, 1 fitted, 2 fitted and stretched")
      .parameter(boolean("projectBothDirections", "pb"),
                 "faces that look away from a plane are seen through it")
      .parameter(hidden(boolean("denseLayout", "dl")),
                 "packs outlines, whatever -layoutMethod says")
      .noFlag()
      .parameter(hidden(boolean("maintainSymmetry", "ms", true)), "of newer files")
      .noFlag()
      .recordedOnly();
  addNewMapFlags(declaration);
  declaration.afterFlags(choose)
      .trial("", "f")
      .trial("-lm 0 -pb 0 -ibd 1 -cm 0 -l 2 -sc 1 -o 1 -p 6 -ps 0.2 -ws 1", "f")
      .trial("-p 4 -l 1 -sc 2 -pb 1", "f")
      .trial("-lm 1 -ps 0.2 -sc 2", "f")
      .trial("-p 12 -l 0 -sc 0 -o 0 -s 1 2 3 -ro 10 20 30 -cm 1", "f")
      .operation(project);
}

}  // namespace host::modelling
