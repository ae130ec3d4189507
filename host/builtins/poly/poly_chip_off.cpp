#include "host/builtins/poly/extrude_flags.h"

namespace host::builtins {

void registerPolyChipOff(CommandRegistry& registry) {
  HistoryFlags flags = placementFlags();
  flags.push_back({"kft", "keepFacesTogether", {ArgType::Bool}});
  flags.push_back({"dup", "duplicate", {ArgType::Bool}});
  defineModelling(registry,
                  {.command = "polyChipOff",
                   .nodeType = "polyChipOff",
                   .works = scene::ComponentType::Face,
                   .leaves = Leaves::Made},
                  std::move(flags),
                  [](Context& context, const ParsedArgs& args, dg::Node& node, const MeshItem& item,
                     const std::vector<FaceId>& faces) {
                    const auto vertices = mesh::convertComponents(
                        item.mesh, mesh::ComponentKind::Face, faces, mesh::ComponentKind::Vertex);
                    return setExtrudeFrame(context, args, node, item, vertices);
                  });
}

}  // namespace host::builtins
