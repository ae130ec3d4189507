#include "host/builtins/common/plug_values.h"
#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

namespace {

/// -offset is the width in either measure: as a fraction it counts without a unit.
Result<void> shareOffset(Context& context, const ParsedArgs& args, dg::Node& node) {
  if (!args.has("offset") || args.has("fraction")) return {};
  dg::Graph& graph = context.document.graph();
  const auto isFraction = graph.get(node.plug("offsetAsFraction"));
  if (!isFraction || dg::equal(*isFraction, std::int64_t{0})) return {};
  const double unit = unitFactor(dg::AttributeType::Distance, context.document.units());
  return graph.set(node.plug("fraction"), args.real("offset") / unit);
}

}  // namespace

void registerPolyBevel(CommandRegistry& registry) {
  constexpr ArgType kSwitch = ArgType::Bool, kAngle = ArgType::Angle, kChoice = ArgType::Int;
  const HistoryFlags flags = {
      {"o", "offset", {ArgType::Distance}},
      {"oaf", "offsetAsFraction", {kSwitch}},
      {"f", "fraction", {ArgType::Double}},
      {"af", "autoFit", {kSwitch}},
      {"sg", "segments", {ArgType::Int}},
      {"d", "depth", {ArgType::Double}},
      {"r", "roundness", {ArgType::Double}},
      {"c", "chamfer", {kSwitch}},
      {"fn", "fillNgons", {kSwitch}},
      {"sn", "subdivideNgons", {kSwitch}},
      {"ua", "uvAssignment", {kChoice}},
      {"mv", "mergeVertices", {kSwitch}},
      {"mvt", "mergeVertexTolerance", {ArgType::Distance}},
      {"sa", "smoothingAngle", {kAngle}},
      {"m", "mitering", {kChoice}},
      {"mia", "miterAlong", {kChoice}},
      {"ma", "miteringAngle", {kAngle}},
      {"at", "angleTolerance", {kAngle}},
      worldSpaceFlag(),
  };
  // Older scripts name the command after the node.
  for (const char* name : {"polyBevel", "polyBevel3"})
    defineModelling(registry,
                    {.command = name,
                     .nodeType = "polyBevel3",
                     .nodeName = "polyBevel",
                     .works = scene::ComponentType::Edge,
                     .leaves = Leaves::Made},
                    flags,
                    [](Context& context, const ParsedArgs& args, dg::Node& node, const MeshItem&,
                       const std::vector<EdgeId>&) { return shareOffset(context, args, node); });
}

}  // namespace host::builtins
