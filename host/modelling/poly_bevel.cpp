#include <algorithm>
#include <numbers>

#include "host/cmd/plug_values.h"
#include "host/modelling/declare/placement.h"
#include "host/ops/topology/bevel_edges.h"

namespace host::modelling {

namespace {

constexpr double kDegree = std::numbers::pi / 180;

/// The faces of the last evaluation. While a drag changes nothing but the width, only what is new
/// is placed.
struct CachedBevel {
  scene::MeshDataPtr input;
  std::shared_ptr<const scene::ComponentListData> edges;
  ops::BevelPlan plan;
};

ops::BevelEdgesOptions optionsOf(const HistoryContext& context, double roundness, bool chamfer) {
  using Uvs = ops::BevelEdgesOptions::UvAssignment;
  ops::BevelEdgesOptions options;
  options.offsetAsFraction = context.boolean("offsetAsFraction");
  // Dragged the other way a bevel stays closed.
  options.offset = std::max(0.0, context.real(options.offsetAsFraction ? "fraction" : "offset"));
  options.segments = context.integer("segments");
  options.roundness = std::clamp(roundness, 0.0, 1.0);
  options.smoothingAngle = context.real("smoothingAngle");
  options.autoFit = context.boolean("autoFit");
  options.fillNgons = context.boolean("fillNgons");
  options.subdivideNgons = context.boolean("subdivideNgons");
  options.mergeVertices = context.boolean("mergeVertices");
  options.mergeTolerance = context.real("mergeVertexTolerance");
  options.miteringAngle = context.real("miteringAngle");
  options.chamfer = chamfer;
  options.uvAssignment = context.integer("uvAssignment") == 0 ? Uvs::PlanarPerFace : Uvs::Preserve;
  options.space = context.space();
  return options;
}

Result<void> bevel(HistoryContext& context, double roundness, bool chamfer) {
  const ops::BevelEdgesOptions options = optionsOf(context, roundness, chamfer);
  const auto list = context.componentList();
  auto cached = std::static_pointer_cast<const CachedBevel>(context.plan);
  if (!cached || cached->input != context.input || cached->edges != list ||
      !cached->plan.hasTopologyOf(options)) {
    context.plan.reset();
    const auto edges = context.edges();
    if (edges.empty()) return {};
    auto plan = ops::BevelPlan::make(context.mesh, edges, options);
    if (!plan) return failWith(plan.error());
    cached =
        std::make_shared<const CachedBevel>(CachedBevel{context.input, list, *std::move(plan)});
    context.plan = cached;
  }
  auto placed = cached->plan.place(options);
  if (!placed) return failWith(placed.error());
  context.mesh = std::move(placed->mesh);
  std::vector<FaceId> faces = placed->result->strips;
  faces.insert(faces.end(), placed->result->caps.begin(), placed->result->caps.end());
  context.makes(std::move(faces));
  return {};
}

/// -offset is the width in either measure: as a fraction it counts without a unit.
Result<void> shareOffset(Context& context, const ParsedArgs& args, Node& node, const MeshItem&,
                         const std::vector<Index>&) {
  if (!args.has("offset") || args.has("fraction") || !isOn(context, node, "offsetAsFraction"))
    return {};
  const double unit = cmd::unitFactor(AttributeType::Distance, context.document.units());
  return context.document.graph().set(node.plug("fraction"), args.real("offset") / unit);
}

/// What bevels of all ages have. Nodes are as plain as their files expect; the commands set what
/// makes a bevel closed and welded.
void addBevel(Declaration& declaration) {
  declaration.nodesCalled("polyBevel")
      .takes(ComponentType::Edge)
      .leaves(Leaves::Made)
      .parameter(keyable(distance("offset", "o", 0.2)),
                 "distance of the new edges from the old one; with -offsetAsFraction as -fraction")
      .parameter(boolean("offsetAsFraction", "oaf"), "-fraction says the width")
      .parameter(keyable(limited(real("fraction", "f", 0.5), 0, 1)),
                 "width as a part of half the shortest edge around")
      .parameter(boolean("autoFit", "af", true),
                 "a width that would slide past the end of an edge is shortened")
      .parameter(keyable(atLeast(integer("segments", "sg", 1), 1)), "faces across each edge")
      .parameter(boolean("fillNgons", "fn"), "close the gaps where strips meet by faces")
      .commandSets(1)
      .parameter(choice("uvAssignment", "ua", {"Planar projection per face", "Preserve original"}),
                 "UVs of new faces: 0 projected, 1 those of the faces beside them")
      .parameter(boolean("mergeVertices", "mv"), "weld new vertices that lie on each other")
      .commandSets(1)
      .parameter(distance("mergeVertexTolerance", "mvt"), "nearer than this")
      .commandSets(0.0001)
      .parameter(angle("smoothingAngle", "sa"), "new edges are hard beyond it")
      .commandSets(30 * kDegree)
      .parameter(angle("miteringAngle", "ma"),
                 "edges of a face that meet at more end at the width from their vertex")
      .commandSets(180 * kDegree)
      .parameter(angle("angleTolerance", "at", 20 * kDegree),
                 "where further triangles would stand in corners")
      .commandSets(180 * kDegree)
      .recordedOnly()
      .parameter(boolean("subdivideNgons", "sn"), "quads in corners of several segments")
      .afterFlags(shareOffset);
}

/// A new bevel of the older kind is half as round as can be; that is the arc.
Result<void> bevelByRoundness(HistoryContext& context) {
  return bevel(context, 2 * context.real("roundness"), true);
}

Result<void> bevelByDepth(HistoryContext& context) {
  return bevel(context, context.real("depth"), context.boolean("chamfer"));
}

}  // namespace

void polyBevel(Declarations& add) {
  Declaration& older = add("polyBevel", "Replaces edges by strips of faces.")
                           .node("polyBevel", typeCode("PBEV"), "polyModifierWorld")
                           .nodeAlias("polyBevel2", typeCode("PBV2"));
  addBevel(older);
  older
      .parameter(keyable(real("roundness", "r", 0.5)),
                 "of several segments: 0 flat, 0.5 and more an arc")
      .parameter(boolean("useLegacyBevelAlgorithm", "com"), "of files of before 2015")
      .noFlag()
      .recordedOnly()
      .trial("-offset 0.1 -offsetAsFraction 1", "e")
      .trial("-o 0.05 -oaf 0 -sg 3 -r 0.2 -ws 1 -fillNgons 0 -ua 0", "e")
      .trial("-o 0.05 -oaf 0 -sg 3 -r 0.5 -sn 1", "e")
      .operation(bevelByRoundness);

  Declaration& newer = add("polyBevel3", "Replaces edges by strips of faces.")
                           .node("polyBevel3", typeCode("PBV3"), "polyModifierWorld");
  addBevel(newer);
  newer.parameter(keyable(real("depth", "d", 1)), "of several segments: 0 flat, 1 an arc")
      .parameter(boolean("chamfer", "c", true),
                 "cut the edge off; otherwise new faces follow the old ones up to it")
      .parameter(choice("mitering", "m", {"Auto", "Uniform", "Patch", "Radial", "None"}),
                 "how strips meet at corners")
      .withoutEffect()
      .parameter(choice("miterAlong", "mia", {"Auto", "Center", "Edge", "Hard Edge"}),
                 "what mitering follows")
      .withoutEffect()
      .parameter(keyable(real("roundness", "r", 0.5)), "of older bevels; here -depth says it")
      .withoutEffect()
      .parameter(angle("filterAngle", "fan", 30 * kDegree), "of -filterEdgesByAngle")
      .recordedOnly()
      .parameter(boolean("filterEdgesByAngle", "fea"), "bevel sharper edges only")
      .withoutEffect()
      .parameter(boolean("filterHardEdges", "fhe"), "bevel hard edges only")
      .withoutEffect()
      .parameter(boolean("forceParallel", "fp"), "keep the new edges parallel to the old")
      .withoutEffect()
      .trial("-f 0.3 -oaf 1 -sg 2 -d 0.5", "e")
      .trial("-f 0.3 -oaf 1 -sg 3 -sn 1", "e")
      .trial("-o 0.05 -sg 2 -c 0 -sa 0 -ma 30", "e")
      .operation(bevelByDepth);
}

}  // namespace host::modelling
