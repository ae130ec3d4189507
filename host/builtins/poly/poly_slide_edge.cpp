// polySlideEdge: moves edges along what leaves them. As of the original, an edit of points without
// a node: with history it goes to the tweaks.
#include "host/builtins/common/command.h"
#include "host/nodes/mesh_components.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/move_points.h"
#include "host/ops/topology/slide_edges.h"

namespace host::builtins {

namespace {

CommandResult polySlideEdge(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  const auto items = nodes::meshItems(*list);
  if (!items) return failWith(items.error());
  ops::SlideEdgesOptions options;
  options.fraction = args.real("edgeDirection", 0);
  options.isAbsolute = args.has("absolute");
  const int direction = args.integer("direction", 0);
  if (direction < 0 || direction > 2)
    return fail(ErrorKind::BadArgument,
                "polySlideEdge: the direction is 0 (left), 1 (right) or 2 (normal), not {}.",
                direction);
  options.direction = static_cast<ops::SlideEdgesOptions::Direction>(direction);
  bool hasEdges = false;
  for (const nodes::MeshItem& item : *items) {
    if (item.isObject()) continue;
    const std::vector<EdgeId> edges = item.idsOf<EdgeId>();
    if (edges.empty()) continue;
    hasEdges = true;
    auto mesh = nodes::evaluatedMesh(*item.path.node());
    if (!mesh) return failWith(std::move(mesh.error()));
    if (auto done = ops::slideEdges(*mesh, edges, options); !done)
      return failAt("polySlideEdge", done.error());
    HOST_TRY(nodes::tweakPoints(*item.path.node(), mesh->points()));
  }
  if (!hasEdges) return fail("polySlideEdge: name or select edges.");
  return mel::Value(true);
}

}  // namespace

void registerPolySlideEdge(CommandRegistry& registry) {
  define(registry, "polySlideEdge",
         Syntax()
             .about("Moves edges along the edges that leave them on one side.")
             .flag("ed", "edgeDirection", {ArgType::Double})
             .help("the fraction of the way; negative to the other side")
             .flag("d", "direction", {ArgType::Int})
             .help("0 left, 1 right, 2 along the normals")
             .flag("a", "absolute")
             .help("all go equally far, by the fraction of the shortest way")
             .objects(0, -1, true),
         polySlideEdge);
}

}  // namespace host::builtins
