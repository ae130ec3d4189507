#include <numbers>

#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/wedge_faces.h"

namespace host::modelling {

namespace {

Result<void> wedge(HistoryContext& context) {
  const auto faces = context.faces();
  ops::WedgeFacesOptions options;
  options.angle = context.real("wedgeAngle");
  options.divisions = context.integer("divisions");
  const Plug edges = context.node().plug("edge");
  for (const Index i : context.block.graph().elementIndices(edges)) {
    const auto value = context.block.input(edges.element(i));
    if (!value) return failWith(value.error());
    const auto* edge = std::get_if<std::int64_t>(&*value);
    if (edge && *edge >= 0 && *edge < context.mesh.edgeCount())
      options.edges.push_back(static_cast<EdgeId>(*edge));
  }
  options.axis = context.vec3("axis");
  options.center = context.vec3("center");
  if (context.boolean("worldSpace")) {
    const auto back = math::inverse(context.matrix("inputMatrix"));
    if (!back) return fail("an object with a scale of zero has no world axis");
    options.axis = math::transformVector(options.axis, *back);
    options.center = math::transformPoint(options.center, *back);
  }
  if (!faces.empty() && options.edges.empty() && length(options.axis) == 0)
    return fail("say what to turn about: -edge, or -axis with -center");
  auto sides = ops::wedgeFaces(context.mesh, faces, options);
  if (!sides) return failWith(sides.error());
  context.makes(faces);
  return {};
}

Result<void> setEdges(Context& context, const ParsedArgs& args, Node& node, const MeshItem&,
                      const std::vector<Index>&) {
  for (int use = 0; use < args.uses("edge"); ++use) {
    const auto edge = std::int64_t{args.values("edge", use).front().intValue()};
    if (edge < 0) return fail("-edge takes an edge's number, not {}", edge);
    HOST_TRY(context.document.graph().set(node.plug("edge").element(use), edge));
  }
  return {};
}

}  // namespace

void polyWedgeFace(Declarations& add) {
  add("polyWedgeFace", "Turns faces about an edge or an axis; new faces join their rim.")
      .node("polyWedgeFace", typeCode("PWFA"), "polyModifierWorld")
      .takes(ComponentType::Face)
      .leaves(Leaves::Made)
      .parameter(keyable(angle("wedgeAngle", "wa")), "how far")
      .commandSets(std::numbers::pi / 2)
      .parameter(keyable(atLeast(integer("divisions", "d", 1), 1)), "steps on the way")
      .parameter(array(integer("edge", "ed")), "edges to turn about")
      .noFlag()
      .parameter(triple("axis", "as", AttributeType::Distance), "turned about where no -edge is")
      .flag("ax", "axis")
      .parameter(triple("center", "ct", AttributeType::Distance), "a place on the axis")
      .flag("cen", "center")
      .extraFlag({.shortName = "ed",
                  .longName = "edge",
                  .args = {ArgType::Int},
                  .modes = kCreate,
                  .isMultiUse = true,
                  .meaning = "the number of an edge to turn about"})
      .afterFlags(setEdges)
      .trial("-ed 0 -d 3", "f")
      .trial("-ax 0 1 0.5 -cen 2 0 0 -wa 30", "f")
      .trial("-ws 1 -ax 0 1 0 -cen 5 0 0 -d 2", "f")
      .operation(wedge);
}

}  // namespace host::modelling
