#include <algorithm>
#include <numbers>

#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/bevel_edges.h"

namespace host::nodes {

namespace {

Result<void> bevel(HistoryContext& context) {
  using Uvs = ops::BevelEdgesOptions::UvAssignment;
  ops::BevelEdgesOptions options;
  options.offsetAsFraction = context.boolean("offsetAsFraction");
  // Dragged the other way a bevel stays closed.
  options.offset = std::max(0.0, context.real(options.offsetAsFraction ? "fraction" : "offset"));
  options.segments = context.integer("segments");
  options.roundness = std::clamp(context.real("depth"), 0.0, 1.0);
  options.smoothingAngle = context.real("smoothingAngle");
  options.autoFit = context.boolean("autoFit");
  options.fillNgons = context.boolean("fillNgons");
  options.mergeVertices = context.boolean("mergeVertices");
  options.mergeTolerance = context.real("mergeVertexTolerance");
  options.miteringAngle = context.real("miteringAngle");
  options.chamfer = context.boolean("chamfer");
  options.uvAssignment = context.integer("uvAssignment") == 0 ? Uvs::PlanarPerFace : Uvs::Preserve;
  options.space = context.space();
  const auto edges = context.edges();
  if (edges.empty()) return {};
  auto made = ops::bevelEdges(context.mesh, edges, options);
  if (!made) return failWith(made.error());
  std::vector<FaceId> faces = std::move(made->strips);
  faces.insert(faces.end(), made->caps.begin(), made->caps.end());
  context.makes(scene::ComponentType::Face, std::move(faces));
  return {};
}

void registerOne(dg::TypeRegistry& types, std::string_view name, std::uint32_t id) {
  constexpr double kDegree = std::numbers::pi / 180;
  HistoryNodeBuilder(types, name, id, "polyModifierWorld")
      .parameter(keyable(distance("offset", "o", 0.2)))
      .parameter(boolean("offsetAsFraction", "oaf"))
      .parameter(keyable(limited(real("fraction", "f", 0.5), 0, 1)))
      .parameter(boolean("autoFit", "af", true))
      .parameter(keyable(atLeast(integer("segments", "sg", 1), 1)))
      .parameter(keyable(real("depth", "d", 1)))
      .parameter(keyable(real("roundness", "r", 0.5)))
      .parameter(boolean("chamfer", "c", true))
      .parameter(boolean("fillNgons", "fn", true))
      .parameter(boolean("subdivideNgons", "sn"))
      .parameter(choice("uvAssignment", "ua", {"Planar projection per face", "Preserve original"}))
      .parameter(boolean("mergeVertices", "mv", true))
      .parameter(distance("mergeVertexTolerance", "mvt", 0.0001))
      .parameter(angle("smoothingAngle", "sa", 30 * kDegree))
      .parameter(choice("mitering", "m", {"Auto", "Uniform", "Patch", "Radial", "None"}))
      .parameter(choice("miterAlong", "mia", {"Auto", "Center", "Edge", "Hard Edge"}))
      .parameter(angle("miteringAngle", "ma", 180 * kDegree))
      .parameter(angle("angleTolerance", "at", 180 * kDegree))
      .operation(bevel);
}

}  // namespace

void registerPolyBevel(dg::TypeRegistry& types) {
  registerOne(types, "polyBevel", typeCode("PBEV"));
  registerOne(types, "polyBevel2", typeCode("PBV2"));
  registerOne(types, "polyBevel3", typeCode("PBV3"));
}

}  // namespace host::nodes
