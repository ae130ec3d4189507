#include "host/builtins/poly/extrude_flags.h"

namespace host::builtins {

void registerPolyExtrudeFacet(CommandRegistry& registry) {
  HistoryFlags flags = extrudeFlags();
  flags.push_back({"kft", "keepFacesTogether", {ArgType::Bool}});
  defineModelling(
      registry,
      {.command = "polyExtrudeFacet", .nodeType = "polyExtrudeFace", .leaves = Leaves::Made},
      std::move(flags),
      [](Context& context, const ParsedArgs& args, dg::Node& node, const MeshItem& item,
         const std::vector<FaceId>& faces) {
        const auto vertices = mesh::convertComponents(item.mesh, mesh::ComponentKind::Face, faces,
                                                      mesh::ComponentKind::Vertex);
        return setExtrudeFrame(context, args, node, item, vertices);
      });
}

}  // namespace host::builtins
