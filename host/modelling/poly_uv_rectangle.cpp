#include "host/modelling/declare/history_command.h"
#include "host/modelling/declare/uv_edit.h"
#include "host/ops/uv/uv_rectangle.h"

namespace host::modelling {

namespace {

Result<void> lay(HistoryContext& context) {
  const auto set = uvSetOf(context);
  if (!set) return failWith(set.error());
  const std::vector<VertexId> vertices = context.vertices();
  if (vertices.size() != 2)
    return fail("choose two vertices, opposite corners of a rectangle, not {}", vertices.size());
  const auto faces = ops::mapUvRectangle(context.mesh, *set, vertices[0], vertices[1]);
  return faces ? Result<void>() : failWith(faces.error());
}

/// Says what is amiss before a node is made.
CommandResult create(Context& context, const ParsedArgs& args, const Declaration& declaration) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(list.error());
  const auto items = distinctMeshItems(*list);
  if (!items) return failWith(items.error());
  for (const MeshItem& item : *items)
    if (const std::size_t count = item.ids(ComponentType::Vertex).size(); count != 2)
      return fail("polyUVRectangle: choose two vertices of '{}', opposite corners, not {}",
                  item.path.transform().partialName(), count);
  auto names = runHistoryCommand(context, args, declaration, *list);
  if (!names) return failWith(std::move(names.error()));
  return mel::Value(std::move(*names));
}

}  // namespace

void polyUvRectangle(Declarations& add) {
  Declaration& declaration =
      add("polyUVRectangle", "Lays a rectangle of quads between two vertices over the unit square.")
          .node("polyUVRectangle", typeCode("PUVR"))
          .takes(ComponentType::Vertex);
  addUvSetName(declaration);
  declaration.creates(create).operation(lay);
}

}  // namespace host::modelling
