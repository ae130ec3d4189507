#include "host/builtins/poly/extrude_flags.h"

namespace host::builtins {

void registerPolyExtrudeEdge(CommandRegistry& registry) {
  HistoryFlags flags = extrudeFlags();
  flags.push_back({"kft", "keepFacesTogether", {ArgType::Bool}});
  defineModelling(registry,
                  {.command = "polyExtrudeEdge",
                   .nodeType = "polyExtrudeEdge",
                   .works = scene::ComponentType::Edge,
                   .leaves = Leaves::Made},
                  std::move(flags),
                  [](Context& context, const ParsedArgs& args, dg::Node& node, const MeshItem& item,
                     const std::vector<EdgeId>& edges) {
                    const auto vertices = mesh::convertComponents(
                        item.mesh, mesh::ComponentKind::Edge, edges, mesh::ComponentKind::Vertex);
                    return setExtrudeFrame(context, args, node, item, vertices);
                  });
}

}  // namespace host::builtins
